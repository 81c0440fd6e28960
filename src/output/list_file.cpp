#include "output/list_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdarg>
#include <cstring>
#include <string>
#include <string_view>

#include "core/diagnostics.h"
#include "output/list_text.h"
#include "symbols/expression.h"
#include "isa/predefined.h"

namespace ta51 {

namespace {

using namespace list_text;

constexpr int32_t kNoText = -1;

enum FieldIndex { LabelText, OpcodeText, OperandText, CommentText, kFieldCount };

// One field of the source text: the part not yet written and where it stops
// (kNoText: at the line's new line).
struct FieldText {
  int32_t text = kNoText;
  int32_t end = kNoText;
  int32_t width = 0;
};

__attribute__((format(printf, 1, 2))) std::string Format(const char* format, ...) {
  char buffer[320];
  va_list args;
  va_start(args, format);
  int length = std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  if (length < 0) return {};
  if (static_cast<size_t>(length) < sizeof buffer) return buffer;
  std::string text(static_cast<size_t>(length), '\0');
  va_start(args, format);
  std::vsnprintf(text.data(), text.size() + 1, format, args);
  va_end(args);
  return text;
}

// A C string (up to its first zero, as the header has always shown it),
// padded with blanks to `width` columns and cut to `limit` characters.
void PutHeaderText(BufferSink& sink, const std::string& text, size_t width, size_t limit = SIZE_MAX) {
  size_t length = std::min(limit, text.size());
  if (const void* zero = std::memchr(text.data(), '\0', length)) length = static_cast<size_t>(static_cast<const char*>(zero) - text.data());
  sink.Put(text.data(), length);
  if (length < width) sink.Blanks(width - length);
}

// --- Listed rows -------------------------------------------------------------

// What one listed line carries from row to row.
template <class Sink>
struct ListRow {
  ListRow(Assembler& assembler, Sink out) : as(assembler), sink(out) {}

  Assembler& as;
  Sink sink;
  int32_t Column = 0;
  int32_t TargetColumn = 0;
  FieldText Fields[kFieldCount];

  bool AnyTextLeft() const {
    return std::any_of(std::begin(Fields), std::end(Fields), [](const FieldText& f) { return f.text != kNoText; });
  }
};

template <class Sink>
void Put(ListRow<Sink>& row, char c) {
  row.sink.Put(c);
  ++row.Column;
}

template <class Sink>
void Put(ListRow<Sink>& row, std::string_view text) {
  row.sink.Put(text.data(), text.size());
  row.Column += static_cast<int32_t>(text.size());
}

// A piece that `text` writes at the place it is given, in at most `room`
// bytes, returning its end.
template <class Sink, class Text>
void PutMade(ListRow<Sink>& row, size_t room, Text text) {
  char* const out = row.sink.Room(room);
  char* const end = text(out);
  row.sink.Done(end);
  row.Column += static_cast<int32_t>(end - out);
}

template <class Sink>
void PutBlanks(ListRow<Sink>& row, int32_t count) {
  row.sink.Blanks(static_cast<size_t>(count));
  row.Column += count;
}

// A limit of 0 means none; a negative one is taken as none too, since no row
// could ever make progress under it.
bool LimitReached(const Assembler& as, int32_t column) {
  return as.ListLineLimit > 0 && column >= as.ListLineLimit;
}

constexpr auto kFieldBreaks = [] {
  std::array<bool, 256> breaks{};
  breaks[' '] = breaks['\t'] = breaks['\n'] = breaks['\0'] = true;
  return breaks;
}();

bool IsFieldBreak(char c) { return kFieldBreaks[static_cast<unsigned char>(c)]; }

// Offset of the new line (or the end of the text) at or after `from`.
int32_t LineEnd(const LineCursor& line, int32_t from) {
  const std::string& text = line.text;
  if (from < 0 || static_cast<size_t>(from) >= text.size()) return from;
  const char* begin = text.data() + from;
  size_t length = text.size() - static_cast<size_t>(from);
  const void* newLine = std::memchr(begin, '\n', length);
  if (newLine != nullptr) length = static_cast<size_t>(static_cast<const char*>(newLine) - begin);
  const void* zero = std::memchr(begin, '\0', length);  // a zero ends the text too
  if (zero != nullptr) length = static_cast<size_t>(static_cast<const char*>(zero) - begin);
  return from + static_cast<int32_t>(length);
}

template <class Sink>
void PadToTarget(ListRow<Sink>& row) {
  if (row.Column > row.TargetColumn) Put(row, ' ');
  if (row.Column <= row.TargetColumn) PutBlanks(row, row.TargetColumn - row.Column + 1);
}

// Writes one field from its text position; returns what the line limit left
// over, or kNoText.
template <class Sink>
int32_t WriteField(ListRow<Sink>& row, const FieldText& field, bool first) {
  const LineCursor& line = row.as.Line;
  const int32_t text = field.text;
  int32_t end = field.end;
  if (end != kNoText && text > end) return kNoText;
  if (text == end || (!first && IsFieldBreak(line.At(text)))) return kNoText;
  if constexpr (Sink::kMayMeetLimit) {
    if (LimitReached(row.as, row.Column)) return text;
  }
  PadToTarget(row);
  if (end == kNoText) {
    end = LineEnd(line, text);
  } else {
    end = std::min(end, static_cast<int32_t>(line.text.size()));
    while (end > text && IsFieldBreak(line.At(end - 1))) --end;
  }
  if constexpr (!Sink::kMayMeetLimit) {
    if (end > text) Put(row, std::string_view(line.text.data() + text, static_cast<size_t>(end - text)));
    return kNoText;
  }
  // As many characters at once as the line limit leaves room for; at least
  // one, for the padding may already have reached the limit.
  for (int32_t at = text; at < end;) {
    int32_t count = end - at;
    if (row.as.ListLineLimit > 0) count = std::max(1, std::min(count, row.as.ListLineLimit - row.Column));
    Put(row, std::string_view(line.text.data() + at, static_cast<size_t>(count)));
    at += count;
    if (LimitReached(row.as, row.Column)) return at < end ? at : kNoText;
  }
  return kNoText;
}

// Writes the fields that still have text; a field cut by the limit ends the
// row. Only a field that ends moves the column of the next one.
template <class Sink>
void WriteFields(ListRow<Sink>& row, bool first) {
  for (FieldText& field : row.Fields) {
    if (field.text == kNoText) continue;
    field.text = WriteField(row, field, first);
    first = false;
    if (field.text != kNoText) return;
    row.TargetColumn += field.width;
  }
}

template <class Sink>
void SetUpFields(ListRow<Sink>& row) {
  const Assembler& as = row.as;
  row.TargetColumn = as.ListSourceColumn;
  if (as.CommentLine) {
    row.Fields[LabelText] = {as.LabelOffset, LineEnd(as.Line, as.LabelOffset), as.LabelFieldWidth};
    return;
  }
  row.Fields[LabelText] = {as.LabelOffset, as.OpcodeOffset, as.LabelFieldWidth};
  row.Fields[OpcodeText] = {as.OpcodeOffset, as.OperandOffset != 0 ? as.OperandOffset : kNoText, as.OpcodeFieldWidth};
  row.Fields[OperandText] = {as.OperandOffset, as.CommentOffset, as.OperandFieldWidth};
  row.Fields[CommentText] = {as.CommentOffset, kNoText, 0};
}

void CheckFieldsFit(Assembler& as) {
  const int32_t needed = as.ListSourceColumn + 3 + as.LabelFieldWidth + as.OpcodeFieldWidth + as.OperandFieldWidth;
  if (as.ListLineLimit != 0 && as.WidthChanged && as.ListLineLimit <= needed) {
    ReportWarning(as, 98);
    as.WidthChanged = false;
  }
}

// The number column: a sequence number is an int, shown as "%05d", in at
// most 11 columns; the fill of PutDecimal may reach further before the rest
// of the row covers it.
constexpr size_t kNumberColumnRoom = kDecimalFillLimit;

// A sequence number is shown as an int; one that only becomes negative by
// that is shown as the unsigned number of its bits.
int64_t ShownSequenceNumber(int64_t number) {
  const int shown = static_cast<int>(number);
  return number < 0 ? int64_t{shown} : int64_t{static_cast<uint32_t>(shown)};
}

template <class Sink>
void WriteNumberColumn(ListRow<Sink>& row) {
  const Assembler& as = row.as;
  if (as.FromSourceFile && !as.CL) {
    const bool sequenced = static_cast<bool>(as.opt.SEQ);
    const int64_t number = sequenced ? ShownSequenceNumber(as.SequenceNumber) : int64_t{as.LineNumber};
    PutMade(row, kDecimalFillLimit, [&](char* out) { return DecimalText(out, number, 5, sequenced ? '0' : ' '); });
  } else if (!as.BlankLine && !as.CL) {
    Put(row, "     ");
  } else {
    row.Column = 5;
  }
}

// DB and DW keep all their bytes apart; an instruction has at most three.
uint8_t ListedByte(const Assembler& as, int32_t index) {
  if (as.SavedBytesFlag) return index < kDataStatementLimit ? as.DataListBuffer[index] : 0;
  return index < 3 ? as.CodeBuffer[index] : 0;
}

template <class Sink>
void WriteBytes(ListRow<Sink>& row, int32_t from, int32_t to) {
  for (int32_t index = from; index < to; ++index)
    PutMade(row, 3, [&](char* out) { return ByteText(out, ListedByte(row.as, index)); });
}

// The address column and the bytes of a row, at most 9 + 9 columns.
constexpr size_t kAddressAndBytesRoom = 18;

template <class Sink>
void WriteAddressAndBytes(ListRow<Sink>& row) {
  Assembler& as = row.as;
  if (as.ShowLineValue)
    PutMade(row, kAddressRoom, [&](char* out) { return AddressText(out, static_cast<uint32_t>(as.LineValue)); });
  else
    Put(row, "     ");
  WriteBytes(row, 0, std::min(as.CodeLength, 3));
  as.SavedBytesFlag = as.CodeLength >= 4;
}

// The first row of a listed line; false for a blank line, which has no more.
template <class Sink>
bool WriteFirstRow(ListRow<Sink>& row) {
  Assembler& as = row.as;
  WriteNumberColumn(row);
  if (as.BlankLine) {
    Put(row, '\n');
    return false;
  }
  WriteAddressAndBytes(row);
  SetUpFields(row);
  WriteFields(row, as.CommentLine);
  Put(row, '\n');
  return true;
}

using CheckedRow = ListRow<BufferSink>;

// Ends the row's text, then what writes straight to the stream may follow.
void EndRowThenBlankLine(CheckedRow& row) { ListBlankLine(row.as); }

void NewPageForRow(CheckedRow& row) { NewPage(row.as); }

// Further rows of a long DB or DW, each with the address of its first byte.
void WriteByteRows(CheckedRow& row) {
  Assembler& as = row.as;
  if (!as.SavedBytesFlag || as.CodeLength < 4) return;
  uint32_t address = static_cast<uint32_t>(as.LineValue);
  for (int32_t next = 3; next < as.CodeLength; next += 3) {
    if (as.LineCount >= as.PageLength) NewPageForRow(row);
    address += 3;
    row.Column = 0;
    if (!as.CL) Put(row, "     ");
    row.Column = 5;
    PutMade(row, kAddressRoom, [&](char* out) { return AddressText(out, address); });
    WriteBytes(row, next, std::min(next + 3, as.CodeLength));
    WriteFields(row, true);
    EndRowThenBlankLine(row);
  }
}

// Text that the line limit cut goes on in rows of its own.
void WriteTextRows(CheckedRow& row) {
  Assembler& as = row.as;
  while (row.AnyTextLeft()) {
    row.Column = 0;
    if (as.LineCount >= as.PageLength) NewPageForRow(row);
    WriteFields(row, true);
    EndRowThenBlankLine(row);
  }
}

// Any listed line: every row, the room for each piece checked. On the
// console, where the text interleaves with messages, it goes on at once.
void ListRowsChecked(Assembler& as) {
  CheckedRow row(as, BufferSink(as));
  if (WriteFirstRow(row)) {
    WriteByteRows(row);
    WriteTextRows(row);
  }
  if (as.ListIsConsole) FlushListBuffer(as);
}

// The most a row without a line limit can take: the columns before the
// source text, padding up to the last field's column and one blank more per
// field, the text of every field (fields may overlap), the new line and the
// reach of the last blank store. Returns 0 for more than the buffer holds.
size_t RowRoom(const Assembler& as) {
  const int64_t lastColumn = int64_t{std::max(as.ListSourceColumn, 0)} + std::max(as.LabelFieldWidth, 0) +
                             std::max(as.OpcodeFieldWidth, 0) + std::max(as.OperandFieldWidth, 0);
  const int64_t room = static_cast<int64_t>(kNumberColumnRoom + kAddressAndBytesRoom + kFieldCount + 1 + kBlankStore) +
                       lastColumn + int64_t{kFieldCount} * static_cast<int64_t>(as.Line.text.size());
  return room <= static_cast<int64_t>(ListBuffer::kCapacity) ? static_cast<size_t>(room) : 0;
}

// The common line: one row, no line limit, not on the console. Its room is
// made once and its text written without a check per piece.
bool ListRowInReservedRoom(Assembler& as) {
  if (as.ListLineLimit > 0 || as.ListIsConsole || as.CodeLength > 3) return false;
  const size_t room = RowRoom(as);
  if (room == 0) return false;
  ListBuffer& buffer = as.ListPending;
  if (room > ListBuffer::kCapacity - buffer.used) FlushListBuffer(as);
  ListRow<ReservedSink> row(as, ReservedSink(buffer.data + buffer.used));
  WriteFirstRow(row);
  buffer.used = static_cast<size_t>(row.sink.End() - buffer.data);
  return true;
}

}  // namespace

// Formats the header without printf: "PAGE  %03d  %-40s %.24s\n" and
// "           %-15s   %s\n\n".
void NewPage(Assembler& as) {
  ++as.PageNumber;
  if (as.opt.PAGE && as.ListStream != nullptr) {
    BufferSink sink(as);
    // On the console a form feed would only clear the screen.
    sink.Put(as.ListIsConsole ? '\n' : '\f');
    sink.Put("PAGE  ", 6);
    sink.Done(DecimalText(sink.Room(kDecimalFillLimit), as.PageNumber, 3, '0'));
    sink.Put("  ", 2);
    PutHeaderText(sink, as.CurrentFileName, 40);
    sink.Put(' ');
    PutHeaderText(sink, as.RunTime, 0, 24);
    sink.Put("\n           ", 12);
    PutHeaderText(sink, as.ExplicitModuleName, 15);
    sink.Put("   ", 3);
    PutHeaderText(sink, as.TitleText, 0);
    sink.Put("\n\n", 2);
    if (as.ListIsConsole) FlushListBuffer(as);
  }
  as.NewPageWanted = false;
  as.LineCount = 3;
}

void StartListPass(Assembler& as) {
  as.LabelFieldWidth = kDefaultLabelFieldWidth;
  as.OpcodeFieldWidth = kDefaultOpcodeFieldWidth;
  as.OperandFieldWidth = kDefaultOperandFieldWidth;
  as.ListLineLimit = 0;
  as.WidthChanged = false;
  as.PageLength = kDefaultPageLength;
  as.NewPageWanted = true;
  as.PageNumber = 0;
}

void ListBlankLine(Assembler& as) {
  if (as.ListStream != nullptr) WriteSettled(as, "\n");
  ++as.LineCount;
}

void ListLine(Assembler& as) {
  if (as.ListStream == nullptr) return;
  if (!as.ListThisLine || (as.InMacroExpansion && !as.opt.MEX)) return;
  if (as.NewPageWanted || as.LineCount >= as.PageLength) NewPage(as);
  CheckFieldsFit(as);
  ++as.LineCount;
  if (!ListRowInReservedRoom(as)) ListRowsChecked(as);
}

// --- Symbol table ----------------------------------------------------------

namespace {

enum class Section { Symbols, Bits, Registers };

bool IsRegisterVariable(const SymbolEntry& symbol) {
  return symbol.type == T_REGEQU || (symbol.type == T_REGSET && !IsRegisterName(symbol.Name()));
}

bool HiddenPredefined(const Assembler& as, const SymbolEntry& symbol) {
  return (symbol.flags & kSymPredefined) != 0 && !as.opt.PredefinedSymbolsEnabled;
}

bool BelongsTo(const Assembler& as, const SymbolEntry& symbol, Section section) {
  switch (section) {
    case Section::Bits:
      return symbol.type == T_BIT;
    case Section::Registers:
      return IsRegisterVariable(symbol);
    case Section::Symbols:
      break;
  }
  if (HiddenPredefined(as, symbol) || IsRegisterVariable(symbol)) return false;
  switch (symbol.type) {
    case T_MACRO:
    case T_NAMEDMACRO:
    case T_MACROVALUE:
    case T_BIT:
      return false;
    default:
      return true;
  }
}

// Column layout shared by the three walks.
struct TableLayout {
  int32_t MaxName = 0;  // longest name plus one
  int32_t PerRow = 1;
};

TableLayout LayoutOf(const Assembler& as) {
  TableLayout layout;
  layout.MaxName = static_cast<int32_t>(as.Symbols.LongestName());
  // A name too long for the page still gets a row of its own.
  layout.PerRow = std::max((as.PageWidth - 1) / (layout.MaxName + 8), 1);
  return layout;
}

std::string RegisterNameOf(int32_t value) {
  return value >= 1 && value <= 17 ? kRegisterNames[value - 1] : "";
}

std::string EntryText(const TableLayout& layout, const SymbolEntry& symbol, Section section) {
  std::string text(symbol.Name());
  text += "  ";
  if (text.size() < static_cast<size_t>(layout.MaxName + 2)) text.resize(layout.MaxName + 2, ' ');
  if (section == Section::Registers) return text + Format("%4s  ", RegisterNameOf(symbol.value).c_str());
  return text + Format("%04X  ", static_cast<uint32_t>(symbol.value));
}

// One walk over the table; returns the number of entries written.
int32_t WriteSection(Assembler& as, const TableLayout& layout, Section section) {
  int32_t count = 0;
  as.Symbols.ForEach([&](const SymbolEntry& symbol) {
    if (!BelongsTo(as, symbol, section)) return;
    Write(as, EntryText(layout, symbol, section));
    if (++count % layout.PerRow != 0) return;
    ListBlankLine(as);
    if (as.LineCount >= as.PageLength) NewPage(as);
  });
  return count;
}

void WriteHeading(Assembler& as, const char* text) {
  Write(as, text);
  as.LineCount += 3;
}

void EndPartialRow(Assembler& as, const TableLayout& layout, int32_t count) {
  if (count % layout.PerRow != 0) ListBlankLine(as);
}

bool AnyRegisterVariable(Assembler& as) {
  bool found = false;
  as.Symbols.ForEach([&](const SymbolEntry& symbol) {
    if (!HiddenPredefined(as, symbol) && IsRegisterVariable(symbol)) found = true;
  });
  return found;
}

void WriteBanksUsed(Assembler& as) {
  std::string text = "\nRegister banks used:";
  const char* separator = "";
  for (int bank = 0; bank < 4; ++bank) {
    if (!as.RegisterBankUsed[bank]) continue;
    text += Format("%s Bank %d", separator, bank);
    separator = ",";
  }
  Write(as, text + "\n");
}

}  // namespace

void ListSymbolTable(Assembler& as) {
  if (as.ListStream == nullptr) return;
  const TableLayout layout = LayoutOf(as);
  if (as.PageLength - as.LineCount < 4) NewPage(as);

  WriteHeading(as, "\nSymbol table:\n\n");
  int32_t total = WriteSection(as, layout, Section::Symbols);
  EndPartialRow(as, layout, total);

  WriteHeading(as, "\nBit addresses:\n\n");
  const int32_t bits = WriteSection(as, layout, Section::Bits);
  total += bits;

  if (AnyRegisterVariable(as)) {
    EndPartialRow(as, layout, bits);
    WriteHeading(as, "\nRegister variables:\n\n");
    total += WriteSection(as, layout, Section::Registers);
  }

  Write(as, Format("\n%d symbols.\n", total));
  as.LineCount += 2;
  WriteBanksUsed(as);
  FlushListBuffer(as);
  std::fflush(as.ListStream);
}

// --- Directives ------------------------------------------------------------

namespace {

void SkipBlanks(LineCursor& line) {
  while (line.Peek() == ' ' || line.Peek() == '\t') ++line.offset;
}

// Wider fields would only pad every listed line with hundreds of blanks.
constexpr int32_t kFieldWidthLimit = 255;

bool AtStatementEnd(const LineCursor& line) {
  const char c = line.Peek();
  if (c == '\n' || c == '\0' || c == ';') return true;
  return c == '/' && (line.At(line.offset + 1) == '/' || line.At(line.offset + 1) == '*');
}

}  // namespace

// The widths take effect together, once all of them have been read, so a
// statement with an error changes nothing.
int FieldsDirective(Assembler& as) {
  as.ShowLineValue = false;
  int32_t* const fields[] = {&as.LabelFieldWidth, &as.OpcodeFieldWidth, &as.OperandFieldWidth};
  int32_t widths[] = {as.LabelFieldWidth, as.OpcodeFieldWidth, as.OperandFieldWidth};
  for (int place = 0; place < 3; ++place) {
    SkipBlanks(as.Line);
    if (place > 0) {
      if (as.Line.Peek() != ',') break;
      ++as.Line.offset;
      SkipBlanks(as.Line);
    }
    // An empty place keeps its width.
    if (as.Line.Peek() == ',' || AtStatementEnd(as.Line)) continue;
    const int32_t value = EvaluateAbsolute(as);
    if (as.LineHasError) return 0;
    if (value < 0 || value > kFieldWidthLimit) return ReportError(as, 28);
    widths[place] = value;
  }
  for (int place = 0; place < 3; ++place) *fields[place] = widths[place];
  return 12;
}

int PageWidthDirective(Assembler& as) {
  const int32_t value = EvaluateAbsolute(as);
  if (as.LineHasError) return 0;
  if (value != as.ListLineLimit) as.WidthChanged = true;
  as.ListLineLimit = value;
  as.LineValue = value;
  return 12;
}

}  // namespace ta51
