#include "directives/controls.h"

#include <algorithm>
#include <string_view>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "core/option_keywords.h"
#include "output/list_file.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"

namespace ta51 {

namespace {

constexpr size_t kTitleLimit = 99;
// What $SET gives a variable without `= expression`: 0FFFFH, not 1.
constexpr int32_t kSetValue = 0xFFFF;

bool EndsOptionWord(char c) { return c == ',' || c == ';' || c == '\n' || c == '\0' || IsBlank(c); }

// The option word at the read offset, with the offset moved behind it.
std::string_view ReadOptionWord(Assembler& as) {
  LineCursor& line = as.Line;
  int32_t start = line.offset;
  while (!EndsOptionWord(line.Peek())) ++line.offset;
  return std::string_view(line.text).substr(static_cast<size_t>(start), static_cast<size_t>(line.offset - start));
}

// Requires `(` at the read offset and moves past it; false after error 58.
bool OpenParenthesis(Assembler& as) {
  if (as.Line.Peek() != '(') {
    ReportError(as, 58);
    return false;
  }
  ++as.Line.offset;
  return true;
}

void DefineVariable(Assembler& as, const char* name, int32_t value) {
  SymbolDefinition definition;
  definition.value = value;
  definition.type = T_SET;
  definition.settable = true;
  DefineSymbol(as, name, definition);
}

// One `name [= expression]` of $SET or $RESET; the character behind it,
// taken and consumed, or 0 after an error.
char SetOneVariable(Assembler& as, bool reset) {
  LineCursor& line = as.Line;
  SkipBlanks(as);
  int32_t nameAt = line.offset;
  if (!ReadName(as, line.Here())) {
    if (!as.LineHasError) ReportError(as, 11);
    return 0;
  }
  line.offset = nameAt + static_cast<int32_t>(as.NameBuffer.size());
  SkipBlanks(as);
  char next = line.Peek();
  int32_t value = reset ? 0 : kSetValue;
  if (!reset && next == '=') {
    ++line.offset;
    SkipBlanks(as);
    value = EvaluateAbsolute(as);
    if (as.LineHasError) return 0;
    if (as.ExprUndefined) return static_cast<char>(ReportError(as, 33));
    SkipBlanks(as);
    next = line.Peek();
  }
  // Defined once, after its expression, so that `$SET(N = N + 1)` counts on
  // from the value N had.
  DefineVariable(as, line.Pointer(nameAt), value);
  if (as.LineHasError) return 0;
  if (next == ',' || next == ')') {
    ++line.offset;
    return next;
  }
  ReportError(as, next == '\n' || next == '\0' ? 5 : 11);
  return 0;
}

}  // namespace

// Each word takes effect as it is read, so the words ahead of a bad one stay
// in force. The read offset ends behind the last word, and the pass loop
// refuses what else stands there but a comment.
int OptDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  LineCursor& line = as.Line;
  for (int taken = 1;; ++taken) {
    SkipBlanks(as);
    int32_t start = line.offset;
    int code = FindOption(ReadOptionWord(as));
    if (code == kNoOption) {
      line.offset = start;
      return ReportError(as, 52);
    }
    ProcessOption(as, code);
    int32_t end = line.offset;
    SkipBlanks(as);
    if (line.Peek() != ',') {
      line.offset = end;
      break;
    }
    if (taken == kOptWordLimit) return ReportError(as, 21);
    ++line.offset;
  }
  as.ShowLineValue = false;
  return kResultDone;
}

int SaveControl(Assembler& as) {
  as.Controls.ListStack.push_back(as.opt.LIST.bits);
  as.ShowLineValue = false;
  return kResultDone;
}

// The saved value goes back past the lock, as it was saved, lock included.
int RestoreControl(Assembler& as) {
  std::vector<uint32_t>& stack = as.Controls.ListStack;
  if (stack.empty()) return ReportError(as, 1, true, "$RESTORE without a matching $SAVE");
  as.opt.LIST.bits = stack.back();
  stack.pop_back();
  as.ShowLineValue = false;
  return kResultDone;
}

int NoListControl(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  SetOptionFlag(as, as.opt.LIST, 0);
  as.ShowLineValue = false;
  return kResultDone;
}

// The first pass is listed only with LISTF.
int ListControl(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  if (as.SecondPass || as.opt.LISTF) SetOptionFlag(as, as.opt.LIST, 1);
  as.ShowLineValue = false;
  return kResultDone;
}

// The title stands in the header of the pages that follow; the first pass
// only reads past it.
int TitleControl(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  if (!OpenParenthesis(as)) return 0;
  as.ShowLineValue = false;
  LineCursor& line = as.Line;
  int32_t start = line.offset;
  while (line.Peek() != ')' && line.Peek() != '\n' && line.Peek() != '\0') ++line.offset;
  if (as.SecondPass) {
    size_t length = std::min(kTitleLimit, static_cast<size_t>(line.offset - start));
    as.TitleText.assign(line.text, static_cast<size_t>(start), length);
  }
  if (line.Peek() == ')') ++line.offset;
  return kResultDone;
}

// The line is listed on the page it ends, and the next listed line starts a
// new page.
int EjectControl(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  as.ShowLineValue = false;
  SkipBlanks(as);
  as.CommentOffset = as.Line.offset;
  if (as.opt.LIST) ListLine(as);
  as.NewPageWanted = true;
  return kResultListed;
}

int SetControl(Assembler& as, bool reset) {
  if (!OpenParenthesis(as)) return 0;
  as.ShowLineValue = false;
  SkipBlanks(as);
  if (as.Line.Peek() == ')') {
    ++as.Line.offset;
    return kResultDone;
  }
  while (true) {
    char next = SetOneVariable(as, reset);
    if (next == 0) return 0;
    if (next == ')') return kResultDone;
  }
}

}  // namespace ta51
