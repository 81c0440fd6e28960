// Directives that store bytes or reserve room: DB, DW, DS, DBIT, EVEN and
// ALIGN. Both passes run them alike, so that labels get the same addresses;
// only the second writes records.
#include "directives/data.h"

#include <algorithm>
#include <string>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "directives/segments.h"
#include "output/object_file.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"

namespace ta51 {

namespace {

// Largest ALIGN that means anything in a 64K address space.
constexpr uint32_t kAlignLimit = 0x10000;

bool IsStringByte(unsigned char c) { return c >= 0x20 && c < 0x7F; }

// The source text from `start` to the read offset, without blanks around it.
std::string OperandTextFrom(const Assembler& as, int32_t start) {
  const std::string& line = as.Line.text;
  size_t from = std::min(static_cast<size_t>(std::max(start, 0)), line.size());
  size_t to = std::min(static_cast<size_t>(std::max(as.Line.offset, start)), line.size());
  std::string text = line.substr(from, to - from);
  size_t first = text.find_first_not_of(" \t");
  size_t last = text.find_last_not_of(" \t\n");
  return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

// DB and DW store into a code segment only; the default one is chosen first.
bool InCodeSegment(Assembler& as) {
  EnsureCurrentSegment(as);
  if (as.CurrentSegment->type == T_CODE) return true;
  ReportError(as, 88);
  return false;
}

// `'A'` is a character constant; `'AB'` and `''` are strings.
bool StartsString(const Assembler& as) {
  return as.Line.Peek() == '\'' && as.Line.At(as.Line.offset + 2) != '\'';
}

// The characters of a quoted string, one element each; false ends the statement.
bool StoreString(Assembler& as) {
  LineCursor& line = as.Line;
  as.ItemIsText = true;
  as.ExprRelocatable = false;
  ++line.offset;
  while (true) {
    auto c = static_cast<unsigned char>(line.Peek());
    if (c == '\'') {
      ++line.offset;
      if (line.Peek() != '\'') return true;
    } else if (!IsStringByte(c)) {
      // A missing closing quote ends up here too, at the new line.
      ReportError(as, 3);
      return false;
    }
    ++line.offset;
    ++as.ItemCount;
    if (StoreDataElement(as, c)) return false;
  }
}

// One expression element; false ends the statement.
bool StoreExpression(Assembler& as, bool counted) {
  ExprValue expr;
  int32_t value = EvaluateExpression(as, expr, &as.OperandSlot1.text);
  // The element keeps its place even after a bad expression; the error
  // then ends the statement.
  if (StoreDataElement(as, value)) return false;
  if (counted) ++as.ItemCount;
  // In the first pass a forward reference simply takes its place.
  if (as.ExprUndefined && as.SecondPass) {
    ReportError(as, 33);
    return false;
  }
  return true;
}

// The comma between elements; the read offset stays on anything else.
bool NextElement(Assembler& as) {
  SkipBlanks(as);
  if (as.Line.Peek() != ',') return false;
  ++as.Line.offset;
  return true;
}

int DataStatement(Assembler& as, uint32_t width) {
  if (!InCodeSegment(as)) return 0;
  as.ItemSize = width;
  as.ItemCount = width == 1 ? 0 : 1;
  as.SavedBytesFlag = true;  // the list takes the bytes from DataListBuffer
  do {
    SkipBlanks(as);
    bool stored = width == 1 && StartsString(as) ? StoreString(as) : StoreExpression(as, width == 1);
    if (!stored) return 0;
  } while (NextElement(as));
  return kResultDone;
}

// Room skipped with no data in it: EVEN and ALIGN.
void SkipUnits(Assembler& as, uint32_t count) {
  SegmentEntry& segment = *as.CurrentSegment;
  segment.location += count;
  if (!as.SecondPass) return;
  as.TotalBytes += count;
  WriteNewLocation(as, segment.location);
  segment.reserved += count;
}

// DS and DBIT: the size, read in both passes, must be known at once.
bool ReadReservedSize(Assembler& as, bool textInMessage, int32_t& size) {
  int32_t start = as.Line.offset;
  size = EvaluateAbsolute(as);
  if (as.ExprUndefined) {
    ReportError(as, 33, true, textInMessage ? OperandTextFrom(as, start) : std::string());
    return false;
  }
  return !as.LineHasError;
}

// The label of DS or DBIT stands at the start of the room.
void DefineReservationLabel(Assembler& as, int32_t type, int32_t size) {
  if (as.SecondPass || !as.LineHasLabel) return;
  SymbolDefinition definition;
  definition.value = static_cast<int32_t>(as.CurrentSegment->location);
  definition.type = type;
  definition.segment = as.CurrentSegment;
  definition.itemCount = static_cast<uint32_t>(size);
  definition.itemSize = as.ItemSize;
  DefineSymbol(as, as.Line.Pointer(as.LabelOffset), definition);
}

// One past the highest address of any 8051 address space.
constexpr int64_t kAddressSpaceEnd = 0x10000;

int Reserve(Assembler& as, int32_t labelType, bool countsBytes, bool textInMessage) {
  int32_t size = 0;
  if (!ReadReservedSize(as, textInMessage, size)) return 0;
  DefineReservationLabel(as, labelType, size);
  if (as.LineHasError) return 0;
  SegmentEntry& segment = *as.CurrentSegment;
  // A negative size moves the position back, but neither below the start
  // of the space nor past its 64 KiB end: the position would wrap.
  int64_t moved = static_cast<int64_t>(segment.location) + size;
  if (moved < 0 || moved > kAddressSpaceEnd) return ReportError(as, 28);
  as.LineValue = static_cast<int32_t>(segment.location);
  segment.location = static_cast<uint32_t>(moved);
  if (countsBytes) as.TotalBytes += static_cast<uint32_t>(size);
  if (as.SecondPass) {
    WriteNewLocation(as, segment.location);
    segment.reserved += static_cast<uint32_t>(size);
  }
  return kResultNoLabel;
}

}  // namespace

bool StoreDataElement(Assembler& as, int32_t value) {
  const auto width = static_cast<int32_t>(as.ItemSize);
  if (width + as.CodeLength > kDataStatementLimit) {
    ReportError(as, 6);
    return true;
  }
  uint8_t* element = as.CodeBuffer;
  if (width == 2) {
    element[0] = static_cast<uint8_t>(value >> 8);
    element[1] = static_cast<uint8_t>(value);
  } else {
    element[0] = static_cast<uint8_t>(value);
  }
  std::copy(element, element + width, as.DataListBuffer.begin() + as.CodeLength);
  as.CodeLength += width;
  if (as.SecondPass) {
    OperandSlot& slot = as.OperandSlot1;
    if (as.ExprRelocatable) {
      slot.FixupSize = static_cast<int8_t>(width);
      slot.FixupOffset = 0;
      WriteLoadItem(as, element, width, true, true, true, &slot);
    } else {
      WriteLoadItem(as, element, width, false, true, true, nullptr);
    }
  }
  as.OperandSlot1.text.clear();
  return as.LineHasError;
}

int DbDirective(Assembler& as) { return DataStatement(as, 1); }
int DwDirective(Assembler& as) { return DataStatement(as, 2); }

int DsDirective(Assembler& as) {
  EnsureCurrentSegment(as);
  if (as.CurrentSegment->type == T_BIT) return ReportError(as, 88);
  as.ItemSize = 1;
  return Reserve(as, as.CurrentSegment->type, true, true);
}

int DbitDirective(Assembler& as) {
  if (as.CurrentSegment == nullptr || as.CurrentSegment->type != T_BIT) return ReportError(as, 88);
  return Reserve(as, T_BIT, false, false);
}

int EvenDirective(Assembler& as) {
  if (as.CurrentSegment != nullptr && (as.CurrentSegment->location & 1) != 0) SkipUnits(as, 1);
  return kResultDone;
}

int AlignDirective(Assembler& as) {
  if (as.CurrentSegment == nullptr) return kResultDone;
  int32_t start = as.Line.offset;
  auto multiple = static_cast<uint32_t>(EvaluateAbsolute(as));
  if (as.LineHasError) return 0;
  // A forward reference would move the position differently in each pass.
  if (as.ExprUndefined) return ReportError(as, 33, true, OperandTextFrom(as, start));
  if (multiple == 0) return ReportError(as, 64);
  if (multiple > kAlignLimit) return ReportError(as, 28);
  uint64_t location = as.CurrentSegment->location;
  uint64_t aligned = (location + multiple - 1) / multiple * multiple;
  if (aligned != location) SkipUnits(as, static_cast<uint32_t>(aligned - location));
  return kResultDone;
}

}  // namespace ta51
