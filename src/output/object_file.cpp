// The object module: text records, each ended by ".\r\n".
#include "output/object_file.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <string_view>

#include "core/diagnostics.h"
#include "directives/banks.h"
#include "symbols/symbol_table.h"
#include "isa/operands.h"

namespace ta51 {

namespace {

constexpr int kMaxInstructionLength = 3;

int WriteRecordV(Assembler& as, const char* format, va_list arguments) {
  if (as.ObjectStream == nullptr) return -1;
  return std::vfprintf(as.ObjectStream, format, arguments);
}

constexpr size_t kShortRecord = 16;

// Writes text as it is; false when the stream refused it. Load records are
// the bulk of a module, so they bypass the formatted writer.
bool WriteRaw(Assembler& as, std::string_view text) {
  FILE* stream = as.ObjectStream;
  if (stream == nullptr) return false;
  // A short record goes byte by byte into the stream's buffer, where the
  // general write would cost more than the bytes themselves.
  if (text.size() <= kShortRecord) {
    for (char c : text)
      if (putc_unlocked(c, stream) == EOF) return false;
    return true;
  }
  return fwrite_unlocked(text.data(), 1, text.size(), stream) == text.size();
}

void WriteHexBytes(Assembler& as, const uint8_t* bytes, int count) {
  static constexpr char kHexDigits[] = "0123456789ABCDEF";
  char text[2 * kDataStatementLimit];
  size_t length = 0;
  for (int i = 0; i < count && length + 2 <= sizeof text; ++i) {
    text[length++] = kHexDigits[bytes[i] >> 4];
    text[length++] = kHexDigits[bytes[i] & 15];
  }
  WriteRaw(as, std::string_view(text, length));
}

// Source references name the file with every full stop replaced by `*`.
std::string SourceReference(const Assembler& as) {
  const std::string& file = as.CurrentFileName;
  if (as.DebugFileSeen || file.find("\\zvtmp") != std::string::npos || file.find("\\ZVTMP") != std::string::npos ||
      file.find("/zvtmp") != std::string::npos || file.find("/ZVTMP") != std::string::npos)
    return {};
  char line[16];
  int lineLength = std::snprintf(line, sizeof line, "(%u)", as.LineNumber);
  size_t nameLength = file.size() + static_cast<size_t>(lineLength);
  std::string reference;
  reference.reserve(nameLength + 8);
  char length[16];
  std::snprintf(length, sizeof length, ",%04lX", static_cast<unsigned long>(nameLength));
  reference.append(length);
  for (char c : file) reference.push_back(c == '.' ? '*' : c);
  reference.append(line, static_cast<size_t>(lineLength));
  return reference;
}

char SpaceLetter(int32_t space) { return space == 0 ? 'B' : space == 1 ? 'D' : 'I'; }

void WriteField(Assembler& as, const OperandSlot& slot) {
  std::string reference = SourceReference(as);
  WriteObjectRecord(as, "(%s,%d,%c%s)", slot.text.c_str(), slot.FixupSize, SpaceLetter(slot.FixupSpace),
                    reference.c_str());
}

const char* TypeText(int32_t type) {
  switch (type) {
    case T_BIT: return "B,Z";
    case T_DATA: case kRegisterBankType: return "D,Z";
    case T_CODE: return "C";
    case T_XDATA: return "X";
    case T_IDATA: return "I,Z";
    default: return "";
  }
}

const char* PlacementText(int32_t kind) {
  switch (kind) {
    case kKindHigh: return "H,";
    case kKindPostpone: return "P,";
    case kKindOverlayable: return "O,";
    case kKindInterrupt: return "E,";
    default: return "";
  }
}

const char* AttributeText(int32_t attribute) {
  switch (attribute) {
    case kAttrVararg: return "V,";
    case kAttrCommon: return "M,";
    case kAttrPredefined: return "K,";
    default: return "";
  }
}

const char* AlignmentText(int32_t kind) {
  switch (kind) {
    case kKindPage: return "100";
    case kKindInpage: return "0,100";
    case kKindInblock: return "0,800";
    case kKindBitaddressable: return "20,10";
    default: return nullptr;
  }
}

void WriteReservedUnits(Assembler& as, const SegmentEntry& segment) {
  if (segment.type == T_CODE && segment.reserved != 0)
    WriteCheckedRecord(as, "ASQ%lX,%lX.\r\n", static_cast<unsigned long>(segment.number),
                       static_cast<unsigned long>(segment.reserved));
}

void WriteAbsoluteSegment(Assembler& as, const SegmentEntry& segment) {
  if (segment.location == segment.startAddress) return;
  if (segment.registerBank >= 0) {
    std::string name = std::string("Register bank ").append(std::to_string(segment.registerBank));
    WriteCheckedRecord(as, "ST%lX,%s,A,M,%02X%s.\r\n", static_cast<unsigned long>(segment.number),
                       TypeText(segment.type), static_cast<unsigned>(name.size()), name.c_str());
  } else {
    WriteCheckedRecord(as, "ST%X,%s,A.\r\n", segment.number, TypeText(segment.type));
  }
  WriteCheckedRecord(as, "ASS%X,%X.\r\n", segment.number, segment.location - segment.startAddress);
  WriteCheckedRecord(as, "ASL%X,%X.\r\n", segment.number, segment.startAddress);
  WriteReservedUnits(as, segment);
}

void WriteRelocatableSegment(Assembler& as, const SegmentEntry& segment) {
  if (segment.bank != nullptr && !segment.bank->written) WriteBankRecords(as, *segment.bank);
  char head[64];
  std::snprintf(head, sizeof head, "ST%lX,%s,", static_cast<unsigned long>(segment.number), TypeText(segment.type));
  std::string record = head;
  record += PlacementText(segment.kind);
  record += AttributeText(segment.attribute);
  char name[300];
  std::snprintf(name, sizeof name, "%02X%s", static_cast<unsigned>(segment.name.size()), segment.name.c_str());
  record += name;
  // A banked segment names its bank where others name their owner.
  const int32_t* container = segment.bank != nullptr     ? &segment.bank->number
                             : segment.owner != nullptr ? &segment.owner->number
                                                        : nullptr;
  if (container != nullptr) {
    char number[32];
    std::snprintf(number, sizeof number, ",%lX", static_cast<unsigned long>(static_cast<uint32_t>(*container)));
    record += number;
  }
  WriteCheckedRecord(as, "%s.\r\n", record.c_str());
  if (const char* alignment = AlignmentText(segment.kind))
    WriteCheckedRecord(as, "SA%lX,%s.\r\n", static_cast<unsigned long>(segment.number), alignment);
  WriteCheckedRecord(as, "ASS%X,%X.\r\n", segment.number, segment.location);
  WriteReservedUnits(as, segment);
}

void WriteCallTargets(Assembler& as) {
  for (const SegmentEntry& segment : as.Segments.entries)
    for (const std::string& target : segment.CallTargetList)
      WriteCheckedRecord(as, "CL%lX,%s.\r\n", static_cast<unsigned long>(segment.number), target.c_str());
}

void WritePublic(Assembler& as, const SymbolEntry& symbol, unsigned long number) {
  WriteObjectRecord(as, "NI%lX,%02X%s.\r\n", number, static_cast<unsigned>(symbol.Name().size()), symbol.Name().data());
  if (symbol.segment != nullptr)
    WriteObjectRecord(as, "ASI%lX,R%X+%X.\r\n", number, symbol.segment->number, static_cast<uint32_t>(symbol.value));
  else if (!symbol.Expression().empty())
    WriteObjectRecord(as, "ASI%lX,%s.\r\n", number, symbol.Expression().data());
  else
    WriteObjectRecord(as, "ASI%lX,%X.\r\n", number, static_cast<uint32_t>(symbol.value));
}

void WriteNameLists(Assembler& as) {
  for (const std::string& name : as.NoOverlayList)
    WriteCheckedRecord(as, "NV%02X%s.\r\n", static_cast<unsigned>(name.size()), name.c_str());
  if (as.LibraryList.empty()) return;
  std::string record = "LI";
  for (const std::string& name : as.LibraryList) {
    if (record.size() > 2) record += ',';
    record += FormatText("%02X%s", static_cast<unsigned>(name.size()), name.c_str());
  }
  WriteCheckedRecord(as, "%s.\r\n", record.c_str());
}

}  // namespace

namespace {

// The record of an instruction with no field for the linker, the most common
// one, goes out in one write.
void WritePlainLoadRecord(Assembler& as, const uint8_t* code, int length) {
  if (!as.opt.OBJ) return;
  static constexpr char kHexDigits[] = "0123456789ABCDEF";
  char record[2 + 2 * kMaxInstructionLength + 3] = {'L', 'R'};
  size_t used = 2;
  for (int i = 0; i < length; ++i) {
    record[used++] = kHexDigits[code[i] >> 4];
    record[used++] = kHexDigits[code[i] & 15];
  }
  for (char c : {'.', '\r', '\n'}) record[used++] = c;
  as.TotalBytes += static_cast<uint32_t>(length);
  if (!WriteRaw(as, std::string_view(record, used))) ReportError(as, 25, false);
}

}  // namespace

int WriteObjectRecord(Assembler& as, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  int result = WriteRecordV(as, format, arguments);
  va_end(arguments);
  return result;
}

void WriteCheckedRecord(Assembler& as, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  int result = WriteRecordV(as, format, arguments);
  va_end(arguments);
  if (result < 0) ReportError(as, 25, false);
}

void WriteLoadItem(Assembler& as, const uint8_t* bytes, int count, bool isField, bool first, bool last,
                   const OperandSlot* slot) {
  if (!as.opt.OBJ) return;
  if (count != 0 && count <= kMaxInstructionLength && first && last && (slot == nullptr || slot->text.empty())) {
    WritePlainLoadRecord(as, bytes, count);  // a whole record of bytes: one write
    return;
  }
  if (count != 0) {
    if (first) WriteRaw(as, "LR");
    if (slot != nullptr && !slot->text.empty()) {
      WriteField(as, *slot);
      as.TotalBytes += static_cast<uint32_t>(slot->FixupSize);
    } else {
      WriteHexBytes(as, bytes, count);
      as.TotalBytes += static_cast<uint32_t>(count);
    }
  }
  if (last && !WriteRaw(as, ".\r\n")) ReportError(as, 25, false);
  (void)isField;
}


void EmitInstruction(Assembler& as) {
  // A statement of no bytes writes nothing, not even an empty record.
  if (as.CodeLength == 0) return;
  uint32_t before = as.TotalBytes;
  const uint8_t* code = as.CodeBuffer;
  int length = as.CodeLength;
  const OperandSlot& one = as.OperandSlot1;
  const OperandSlot& two = as.OperandSlot2;
  if (one.FixupOffset == 0 && two.FixupOffset == 0 && length <= kMaxInstructionLength) {
    WritePlainLoadRecord(as, code, length);
  } else if (one.FixupOffset == 0 && two.FixupOffset == 0) {
    WriteLoadItem(as, code, length, false, true, true, nullptr);
  } else if (one.FixupOffset != 0 && two.FixupOffset != 0) {
    WriteLoadItem(as, code, one.FixupOffset, false, true, false, nullptr);
    WriteLoadItem(as, code + one.FixupOffset, one.FixupSize, true, false, false, &one);
    WriteLoadItem(as, code + two.FixupOffset, two.FixupSize, true, false, true, &two);
  } else if (one.FixupOffset == kWholeInstructionFixup) {
    WriteLoadItem(as, code, 2, true, true, true, &one);
  } else {
    const OperandSlot& slot = one.FixupOffset != 0 ? one : two;
    int offset = slot.FixupOffset;
    int after = offset + slot.FixupSize;
    if (offset > length || after > length) {
      ReportError(as, 22);
      return;
    }
    WriteLoadItem(as, code, offset, false, true, false, nullptr);
    WriteLoadItem(as, code + offset, slot.FixupSize, true, false, false, &slot);
    WriteLoadItem(as, code + after, length - after, false, false, true, nullptr);
  }
  if (as.TotalBytes - before != static_cast<uint32_t>(length)) ReportError(as, 22);
}

void WriteSegmentSwitch(Assembler& as) {
  if (!as.opt.OBJ || as.CurrentSegment == nullptr) return;
  WriteCheckedRecord(as, "SB%X.\r\n", as.CurrentSegment->number);
  WriteCheckedRecord(as, "IRG,R%X.\r\n", as.CurrentSegment->number);
}

void WriteNewLocation(Assembler& as, uint32_t location) {
  if (as.opt.OBJ) WriteObjectRecord(as, "ASP,%X.\r\n", location);
}

void CreateRegisterBankSegments(Assembler& as) {
  for (int bank = 0; bank < 4; ++bank) {
    if (!as.RegisterBankUsed[bank]) continue;
    bool exists = false;
    for (const SegmentEntry& segment : as.Segments.entries) exists = exists || segment.registerBank == bank;
    if (exists) continue;
    std::deque<SegmentEntry>& entries = as.Segments.entries;
    int32_t number = entries.empty() ? 0 : entries.back().number + 1;
    SegmentEntry& segment = entries.emplace_back();
    segment.number = number;
    segment.type = kRegisterBankType;
    segment.kind = kKindAbsolute;
    segment.registerBank = bank;
    segment.startAddress = static_cast<uint32_t>(bank * 8);
    segment.location = segment.startAddress + 8;
  }
}

void WriteModuleHead(Assembler& as) {
  for (char& c : as.ModuleName)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  WriteCheckedRecord(as, "MB8051,%02X\"%s\".\r\n", static_cast<unsigned>(as.ModuleName.size() + 2),
                     as.ModuleName.c_str());
  WriteCheckedRecord(as, "AD8,2,L.\r\n");
}

void WriteSegmentRecords(Assembler& as) {
  CreateRegisterBankSegments(as);
  for (const SegmentEntry& segment : as.Segments.entries) {
    if (segment.IsAbsolute())
      WriteAbsoluteSegment(as, segment);
    else if (segment.type != 0)
      WriteRelocatableSegment(as, segment);
  }
  WriteSymbolRecords(as);
  WriteCallTargets(as);
  WriteNameLists(as);
}

void WriteSymbolRecords(Assembler& as) {
  unsigned long publicNumber = 0;
  std::vector<const SymbolEntry*> undefined;
  auto linked = [](const SymbolEntry& symbol) { return symbol.relocation != REL_NULL; };
  as.Symbols.ForEachWhere(linked, [&](const SymbolEntry& symbol) {
    if (symbol.relocation == REL_XREF) {
      if ((symbol.flags & kSymUsedExternal) || symbol.Name() == "__cstart")
        WriteObjectRecord(as, "NX%X,%02X%s.\r\n", static_cast<uint32_t>(symbol.value),
                          static_cast<unsigned>(symbol.Name().size()), symbol.Name().data());
    } else if (symbol.relocation == REL_XDREF || (symbol.relocation == REL_XDEF && symbol.type == T_DECLARED)) {
      undefined.push_back(&symbol);
    } else if (symbol.relocation == REL_XDEF) {
      WritePublic(as, symbol, publicNumber++);
    }
  });
  for (const SymbolEntry* symbol : undefined) {
    as.UndefinedPublicName = symbol->Name();
    ReportError(as, 73, symbol->relocation == REL_XDREF);
  }
}

}  // namespace ta51
