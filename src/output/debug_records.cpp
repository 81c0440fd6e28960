// Debug records. Block records open with BB and close with BE, the number
// behind the letters being the block type: 1 types, 3 constants, 5 lines,
// 10 the module's symbols, 11 a segment. Entities are numbered from
// NextDebugNumber, types from NextDebugTypeNumber.
#include "output/debug_records.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "core/diagnostics.h"
#include "directives/bank_state.h"
#include "isa/operands.h"
#include "output/object_file.h"
#include "symbols/symbol_table.h"

namespace ta51 {

namespace {

constexpr uint32_t kNumberTypeCode = 7;  // what the records call a plain number

// Segments of a compiler's own output; their labels get no symbol record.
constexpr std::string_view kCompilerSegments[] = {
    "__CODE", "__DATA", "__IDDATA", "__XDATA", "__UDATA", "__UIDATA", "__UXDATA", "__DCODE", "__DCISEG", "__DCXDATA",
};

uint32_t Unsigned(int32_t value) { return static_cast<uint32_t>(value); }

uint32_t TakeDebugNumber(Assembler& as) { return Unsigned(as.NextDebugNumber++); }

CodeAddress AddressIn(const SegmentEntry& segment, uint32_t location) {
  return CodeAddress{segment.number, location, segment.IsAbsolute()};
}

void AddLineRecord(Assembler& as, uint32_t line, const SegmentEntry* segment, uint32_t location) {
  if (segment == nullptr) return;
  DebugState& debug = as.Debug;
  uint32_t file = debug.DebugLineTable.empty() ? 0 : debug.DebugLineTable.back().file;
  if (debug.LineFiles.empty() || debug.LineFiles[file] != as.CurrentFileName) {
    file = 0;
    while (file < debug.LineFiles.size() && debug.LineFiles[file] != as.CurrentFileName) ++file;
    if (file == debug.LineFiles.size()) debug.LineFiles.push_back(as.CurrentFileName);
  }
  debug.DebugLineTable.push_back(LineEntry{line, file, AddressIn(*segment, location)});
}

// The records of lines, symbols and constants are the bulk of the debug
// records. Each is put together in one reused buffer, without printf, and
// written in one piece.
class Record {
 public:
  explicit Record(Assembler& as) : as_(as), text_(256, '\0') {}

  Record& Put(std::string_view text) {
    std::memcpy(Room(text.size()), text.data(), text.size());
    used_ += text.size();
    return *this;
  }
  // Upper-case hexadecimal, at least `width` digits (at most 8).
  Record& Hex(uint32_t value, size_t width = 1) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    size_t digits = 1;
    while (digits < 8 && (value >> (4 * digits)) != 0) ++digits;
    if (digits < width) digits = width;
    char* end = Room(digits) + digits;
    for (size_t i = 0; i < digits; ++i, value >>= 4) *--end = kDigits[value & 15];
    used_ += digits;
    return *this;
  }
  Record& Signed(int32_t value) { return Hex(static_cast<uint32_t>(value)); }
  // "%X" of an absolute address, "(R%X+%X)" of an offset in a segment.
  Record& Address(const CodeAddress& address) {
    if (address.absolute) return Hex(address.location);
    return Put("(R").Signed(address.segmentNumber).Put("+").Hex(address.location).Put(")");
  }
  // A counted name; a leading `.` is written as `@`, the length unchanged.
  Record& CountedName(std::string_view name) {
    Hex(static_cast<uint32_t>(name.size()), 2);
    if (!name.empty() && name[0] == '.') return Put("@").Put(name.substr(1));
    return Put(name);
  }
  // The value of a symbol, or the text the linker finishes it from.
  Record& Value(const SymbolEntry& symbol) {
    if (symbol.segment == nullptr && !symbol.Expression().empty()) return Put(symbol.Expression());
    return Signed(symbol.value);
  }
  void End() {
    Put(".\r\n");
    FILE* stream = as_.ObjectStream;
    if (stream == nullptr || fwrite_unlocked(text_.data(), 1, used_, stream) != used_) ReportError(as_, 25, false);
    used_ = 0;
  }

 private:
  // Where `count` more characters go; the buffer grows for long names.
  char* Room(size_t count) {
    if (used_ + count > text_.size()) text_.resize(2 * (used_ + count));
    return text_.data() + used_;
  }

  Assembler& as_;
  std::string text_;
  size_t used_ = 0;
};

// A name in quotes, its length counting them; the module's block has two
// fields more.
void WriteBlockStart(Assembler& as, int type, std::string_view name, const char* tail = "") {
  WriteCheckedRecord(as, "BB%d,0,%02X\"%.*s\"%s.\r\n", type, static_cast<unsigned>(name.size() + 2),
                     static_cast<int>(name.size()), name.data(), tail);
}

uint32_t FixedOrSettable(const SymbolEntry& symbol) { return (symbol.flags & kSymSettable) != 0 ? 2 : 1; }

// One block per file, in the order in which the files first gave code; a
// block holds that file's lines in the order of their code.
// The entries grouped by file, each group in the order of code, and where
// each group starts (one more than files): one pass to count, one to place,
// so that many files cost no more than one.
std::vector<const LineEntry*> GroupByFile(const DebugState& debug, std::vector<uint32_t>& groupStart) {
  groupStart.assign(debug.LineFiles.size() + 1, 0);
  for (const LineEntry& entry : debug.DebugLineTable) ++groupStart[entry.file + 1];
  for (size_t file = 1; file < groupStart.size(); ++file) groupStart[file] += groupStart[file - 1];
  std::vector<const LineEntry*> grouped(debug.DebugLineTable.size());
  std::vector<uint32_t> next(groupStart.begin(), groupStart.end() - 1);
  for (const LineEntry& entry : debug.DebugLineTable) grouped[next[entry.file]++] = &entry;
  return grouped;
}

void WriteLineBlocks(Assembler& as) {
  const DebugState& debug = as.Debug;
  std::vector<uint32_t> groupStart;
  const std::vector<const LineEntry*> grouped = GroupByFile(debug, groupStart);
  Record record(as);
  for (uint32_t file = 0; file < debug.LineFiles.size(); ++file) {
    const uint32_t number = TakeDebugNumber(as);
    WriteBlockStart(as, 5, debug.LineFiles[file]);
    WriteCheckedRecord(as, "NN%X,00.\r\n", number);
    for (uint32_t at = groupStart[file]; at < groupStart[file + 1]; ++at) {
      const LineEntry& entry = *grouped[at];
      record.Put("ATN").Hex(number).Put(",0,7,").Hex(entry.line, 2).Put(",0").End();
      record.Put("ASN").Hex(number).Put(",").Address(entry.address).End();
    }
    WriteCheckedRecord(as, "BE5.\r\n");
  }
}

bool IsCompilerSegment(const SegmentEntry* segment) {
  if (segment == nullptr || segment->IsAbsolute()) return false;
  for (std::string_view name : kCompilerSegments)
    if (segment->name == name) return true;
  return false;
}

// Outside the file-scope chain, what a debugger has no use for is left out:
// predefined names, segment names, $SET variables, register aliases, the
// argument count of macros, and the labels of a compiler's own segments.
bool SymbolWanted(const SymbolEntry& symbol, int32_t relocation) {
  if (symbol.relocation != relocation || symbol.type == T_MACRO || symbol.type == T_NAMEDMACRO) return false;
  if (symbol.chain == kFileScopeChain) return true;
  if ((symbol.flags & kSymPredefined) != 0) return false;
  if (IsCompilerSegment(symbol.segment)) return false;
  switch (symbol.type) {
    case T_RSEGMENT: case T_SET: case T_REGEQU: case T_REGSET: case T_MACROVALUE: return false;
    default: return true;
  }
}

uint32_t TypeNumberOf(const Assembler& as, int32_t type) {
  const std::array<int32_t, 6>& table = as.Debug.DebugTypeTable;
  switch (type) {
    case T_DATA: return Unsigned(table[0]);
    case T_CODE: return Unsigned(table[1]);
    case T_XDATA: return Unsigned(table[2]);
    case T_IDATA: return Unsigned(table[3]);
    case T_BIT: return Unsigned(table[5]);
    case T_NUMBER: return kNumberTypeCode;
    default: return 0;
  }
}

void WriteSymbol(Assembler& as, Record& record, const SymbolEntry& symbol) {
  const uint32_t number = TakeDebugNumber(as);
  const uint32_t isPublic = symbol.relocation == REL_XDEF ? 1 : 0;
  const int32_t type = symbol.segment != nullptr ? symbol.segment->type : symbol.type;
  record.Put("NN").Hex(number).Put(",").CountedName(symbol.Name()).End();
  record.Put("ATN").Hex(number);
  if (type == T_NUMBER) {
    record.Put(",7,10,").Hex(FixedOrSettable(symbol)).Put(",").Hex(isPublic).Put(",").Value(symbol).End();
    return;
  }
  // Labels of instructions record no element size; they count as one.
  const uint32_t size = symbol.itemCount * (symbol.itemSize != 0 ? symbol.itemSize : 1);
  record.Put(",").Hex(TypeNumberOf(as, type)).Put(",13,").Hex(size).Put(",").Hex(isPublic).End();
  record.Put("ASN").Hex(number).Put(",");
  if (symbol.segment == nullptr || symbol.segment->IsAbsolute())
    record.Value(symbol).End();
  else
    record.Address(CodeAddress{symbol.segment->number, Unsigned(symbol.value), false}).End();
}

void WriteSymbolDebug(Assembler& as, int32_t relocation) {
  Record record(as);
  as.Symbols.ForEachWithFileScopes([relocation](const SymbolEntry& symbol) { return SymbolWanted(symbol, relocation); },
                                   [&](const SymbolEntry& symbol) { WriteSymbol(as, record, symbol); });
}

// A segment that holds something: BB11 with its space and start, BE11 with
// its end. An absolute segment that stayed empty has no records in the
// module, so it has none here either.
void WriteSegmentBlocks(Assembler& as) {
  for (const SegmentEntry& segment : as.Segments.entries) {
    if (segment.type == 0 || segment.location == 0) continue;
    if (segment.IsAbsolute() && segment.location == segment.startAddress) continue;
    const int space = segment.type == kRegisterBankType ? 0 : segment.type == T_CODE ? 1 : 2;
    std::string start = segment.IsAbsolute() ? FormatText("%X", segment.startAddress)
                                             : FormatText("R%X", Unsigned(segment.number));
    WriteCheckedRecord(as, "BB11,0,0,%X,%X,%s.\r\nBE11,%X.\r\n", space, Unsigned(segment.number), start.c_str(),
                       segment.location);
  }
}

}  // namespace

void NoteInstructionLine(Assembler& as) {
  DebugState& debug = as.Debug;
  const uint32_t location = as.CurrentSegment != nullptr ? as.CurrentSegment->location : 0;
  if (as.FromSourceFile) {
    // A statement of result 1 with no bytes is a percent call.
    debug.PercentLinePending = as.CodeLength == 0;
    debug.PendingLine = as.LineNumber;
    if (as.CodeLength != 0) AddLineRecord(as, as.LineNumber, as.CurrentSegment, location);
    return;
  }
  if (!debug.PercentLinePending || as.CodeLength == 0) return;
  debug.PercentLinePending = false;
  AddLineRecord(as, debug.PendingLine, as.CurrentSegment, location);
}

CallLineMark MarkCallLine(Assembler& as) {
  CallLineMark mark;
  mark.segment = as.CurrentSegment;
  mark.location = as.CurrentSegment != nullptr ? as.CurrentSegment->location : 0;
  mark.line = as.LineNumber;
  mark.fromSourceFile = as.FromSourceFile;
  // A call made from a line of the file ends the wait of a percent call
  // line whose expansion brought no code.
  if (as.FromSourceFile) as.Debug.PercentLinePending = false;
  return mark;
}

void RecordCallLine(Assembler& as, const CallLineMark& mark) {
  const SegmentEntry* segment = mark.segment;
  if (segment == nullptr || segment->type != T_CODE || segment != as.CurrentSegment) return;
  if (!LineTableWanted(as) || !mark.fromSourceFile || segment->location <= mark.location) return;
  AddLineRecord(as, mark.line, segment, mark.location);
}

void WriteMarkBlocks(Assembler& as) {
  bool open = false;
  std::string currentName;
  uint32_t number = 0;
  Record record(as);
  for (const SourceMark& mark : as.Debug.SourceMarkList) {
    if (mark.isFile) {
      if (open) WriteCheckedRecord(as, "BE5.\r\n");
      open = false;
      currentName = mark.fileName;
      for (char& c : currentName)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
      continue;
    }
    if (!open) {
      WriteBlockStart(as, 5, currentName);
      number = TakeDebugNumber(as);
      WriteCheckedRecord(as, "NN%X,00.\r\n", number);
      open = true;
    }
    const int32_t bank = mark.bank != nullptr ? mark.bank->number : 0;
    record.Put("ATN").Hex(number).Put(",").Signed(bank).Put(",7,").Signed(mark.line).Put(",0").End();
    record.Put("ASN").Hex(number).Put(",").Address(mark.address).End();
  }
  if (open) WriteCheckedRecord(as, "BE5.\r\n");
}

void WriteTypeBlock(Assembler& as, bool header) {
  DebugState& debug = as.Debug;
  if (debug.TypeBlockWritten) return;
  debug.TypeBlockWritten = true;
  if (header) WriteBlockStart(as, 1, as.ModuleFileName);
  for (uint32_t i = 0; i < debug.DebugTypeTable.size(); ++i) {
    const uint32_t number = TakeDebugNumber(as);
    const int32_t type = as.NextDebugTypeNumber++;
    debug.DebugTypeTable[i] = type;
    WriteCheckedRecord(as, "NN%X,00.TY%X.ZN%X.TY6E,3,0,%X.\r\n", number, Unsigned(type), number, i);
  }
  if (header) WriteCheckedRecord(as, "BE1.\r\n");
}

bool WriteConstantBlock(Assembler& as, bool header) {
  if (as.Debug.ConstantBlockWritten) return false;
  as.Debug.ConstantBlockWritten = true;
  bool found = false;
  Record record(as);
  auto constant = [](const SymbolEntry& symbol) { return symbol.type == T_NUMBER && symbol.relocation != REL_XREF; };
  as.Symbols.ForEachWithFileScopes(constant, [&](const SymbolEntry& symbol) {
    if (!found && header)
      WriteCheckedRecord(as, "BB3,0,%02X%s.\r\n", static_cast<unsigned>(as.ModuleFileName.size()),
                         as.ModuleFileName.c_str());
    found = true;
    const uint32_t number = TakeDebugNumber(as);
    record.Put("NN").Hex(number).Put(",").CountedName(symbol.Name()).End();
    record.Put("ATN").Hex(number).Put(",7,10,").Hex(FixedOrSettable(symbol)).Put(",0,").Value(symbol).End();
  });
  if (found && header) WriteCheckedRecord(as, "BE3.\r\n");
  return header && !found;
}

void WriteDebugRecords(Assembler& as) {
  WriteTypeBlock(as, true);
  const bool noConstants = WriteConstantBlock(as, true);
  if (!as.Debug.DebugLineTable.empty()) {
    if (noConstants) {
      WriteBlockStart(as, 3, as.ModuleFileName);
      WriteCheckedRecord(as, "BE3.\r\n");
    }
    WriteLineBlocks(as);
  }
  WriteBlockStart(as, 10, as.ModuleName, ",00,0");
  WriteSymbolDebug(as, REL_XDEF);
  WriteSymbolDebug(as, REL_NULL);
  WriteSegmentBlocks(as);
  WriteCheckedRecord(as, "BE10.\r\n");
}

}  // namespace ta51
