// __SFILE, __SLINE and __DEBUG: the debug information of a compiler's output.
// __SFILE and __SLINE mark files and lines in the first pass (the marks are
// written as line blocks at the end of the module); a __DEBUG block is copied
// into the module in the second pass.
#include "directives/debug_directives.h"

#include <string>
#include <string_view>

#include "core/diagnostics.h"
#include "core/line_source.h"
#include "core/option_keywords.h"
#include "core/statement.h"
#include "output/debug_records.h"
#include "output/list_file.h"
#include "output/object_file.h"
#include "symbols/expression.h"

namespace ta51 {

namespace {

// A file name holds at most 260 bytes with its end mark.
constexpr size_t kFileNameLimit = 259;

enum : uint8_t { kBlockTypes = 1, kBlockConstants = 3, kBlockEnd = 29 };

// Lines of a __DEBUG block that do more than pass through, by their first
// characters, compared with case kept.
constexpr KeywordRow kDebugBlockRows[] = {
    {"BB1", kBlockTypes},
    {"BB3", kBlockConstants},
    {"__DEBUGEND", kBlockEnd},
};

bool Refuse(Assembler& as, int number) {
  ReportError(as, number);
  return false;
}

// `"name"` up to its closing quote, or a word up to white space.
bool ReadSourceFileName(Assembler& as, std::string& name) {
  LineCursor& line = as.Line;
  const bool quoted = line.Peek() == '"';
  if (quoted) ++line.offset;
  while (true) {
    char c = line.Peek();
    if (c == '\n' || c == '\0') break;
    if (quoted ? c == '"' : IsBlank(c)) break;
    if (name.size() == kFileNameLimit) return Refuse(as, 87);
    name += c;
    ++line.offset;
  }
  if (quoted) {
    if (line.Peek() != '"') return Refuse(as, 100);
    ++line.offset;
  }
  if (name.empty()) return Refuse(as, 16);
  return true;
}

// The lines of a block come one at a time through the line reader, and each
// is a line of its own for the error reports.
void StartBlockLine(Assembler& as) {
  as.LineHasError = false;
  as.ExprUndefined = false;
  as.OperandSlot1.Clear();
  SkipBlanks(as);
}

void CopyText(Assembler& as, std::string_view text, const char* end) {
  if (as.opt.OBJ)
    WriteCheckedRecord(as, "%.*s%s", static_cast<int>(text.size()), text.data(), end);
}

// The record up to the tab, then the expression behind it as the linker
// needs it: its text if it has one, else its value.
void CopyExpressionLine(Assembler& as, std::string_view text, size_t tab) {
  CopyText(as, text.substr(0, tab), "");
  as.Line.offset += static_cast<int32_t>(tab);
  SkipBlanks(as);
  ExprValue expr;
  int32_t value = EvaluateExpression(as, expr, &as.OperandSlot1.text);
  if (!as.LineHasError) CheckOperandEnd(as);
  if (!as.opt.OBJ) return;
  if (!as.OperandSlot1.text.empty())
    WriteCheckedRecord(as, ",%s.\r\n", as.OperandSlot1.text.c_str());
  else
    WriteCheckedRecord(as, ",%X.\r\n", static_cast<uint32_t>(value));
}

const KeywordRow* BlockWordOf(std::string_view text) {
  for (const KeywordRow& row : kDebugBlockRows)
    if (text.starts_with(row.keyword)) return &row;
  return nullptr;
}

// One line of a block; false at its end mark.
bool CopyBlockLine(Assembler& as) {
  StartBlockLine(as);
  std::string_view text(as.Line.Here());
  text = text.substr(0, text.find('\n'));
  // Blank lines and comments are no records.
  if (text.empty() || text[0] == ';') return true;
  const KeywordRow* word = BlockWordOf(text);
  const uint8_t code = word != nullptr ? word->code : 0;
  if (code == kBlockTypes || code == kBlockConstants) {
    CopyText(as, text, "\r\n");
    if (!as.opt.OBJ) return true;
    // The block's own records follow the line; the source's BE closes it.
    if (code == kBlockTypes)
      WriteTypeBlock(as, false);
    else
      WriteConstantBlock(as, false);
    return true;
  }
  if (size_t tab = text.find('\t'); tab != std::string_view::npos) {
    CopyExpressionLine(as, text, tab);
    return true;
  }
  if (code == kBlockEnd) {
    as.Line.offset += 10;
    SetOptionFlag(as, as.opt.LIST, 0);
    return false;
  }
  CopyText(as, text, "\r\n");
  return true;
}

}  // namespace

int SourceFileDirective(Assembler& as) {
  as.ListThisLine = false;
  as.ShowLineValue = false;
  std::string name;
  if (!ReadSourceFileName(as, name)) return 0;
  as.DebugFileSeen = true;
  // The compiler's output asks for debug records whatever the options say.
  as.opt.DEBUG.bits = (as.opt.DEBUG.bits & 0x80) | 1;
  if (!as.SecondPass) {
    SourceMark mark;
    mark.isFile = true;
    mark.fileName = std::move(name);
    as.Debug.SourceMarkList.push_back(std::move(mark));
    as.Debug.FileMarkSeen = true;
  }
  return kResultDone;
}

int SourceLineDirective(Assembler& as) {
  as.ListThisLine = false;
  as.ShowLineValue = false;
  int32_t line = EvaluateAbsolute(as);
  if (as.LineHasError || as.SecondPass) return as.LineHasError ? 0 : kResultDone;
  if (as.ExprUndefined) return ReportError(as, 33);
  // A line number means nothing without the file it belongs to.
  if (!as.Debug.FileMarkSeen) return ReportError(as, 11, true, "__SLINE needs a __SFILE ahead of it");
  const SegmentEntry* segment = as.CurrentSegment;
  if (segment == nullptr || segment->type != T_CODE) return kResultDone;
  SourceMark mark;
  mark.line = line;
  mark.bank = segment->bank;
  mark.address = CodeAddress{segment->number, segment->location, segment->IsAbsolute()};
  as.Debug.SourceMarkList.push_back(std::move(mark));
  return kResultDone;
}

int DebugBlockDirective(Assembler& as) {
  as.ShowLineValue = false;
  // The block must stand in the file: the lines of a body are no records.
  if (as.InMacroExpansion || !as.FromSourceFile) return ReportError(as, 57);
  as.EndSeen = true;
  if (!as.SecondPass) return kResultDone;
  SkipBlanks(as);
  as.CommentOffset = as.Line.offset;
  if (as.opt.LIST) ListLine(as);
  while (FetchCountedLine(as))
    if (!CopyBlockLine(as)) return kResultListed;
  ReportError(as, 67, true, "the input ends inside the __DEBUG block, __DEBUGEND is missing");
  return kResultListed;
}

std::span<const KeywordRow> DebugBlockWords() { return kDebugBlockRows; }

}  // namespace ta51
