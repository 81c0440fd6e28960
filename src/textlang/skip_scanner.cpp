// The skip scanners of conditional assembly. A false section is read line by
// line through FetchLine, so that continuations, comments and the C-style
// directives keep working in it, and each line gets one keyword test of its
// first word: no expression, no symbol look-up. The scanners count nested
// blocks with a level of their own instead of recursing, so a false section
// of any depth costs no stack.
#include <string_view>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "core/keyword_tables.h"
#include "core/line_source.h"
#include "output/list_file.h"
#include "symbols/expression.h"
#include "textlang/conditional.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

bool ListWanted(const Assembler& as, const OptionFlag& flag) { return as.opt.LIST && flag; }

// Step 1: the statement that brought the scanner here (the false IF or $IF,
// or the ELSE that ends an active section) is listed with its fields, if
// LIST and CLIST are on. A line with an error was listed by the reporter.
void ListStartingStatement(Assembler& as) {
  as.CommentLine = false;
  as.CodeLength = 0;
  if (as.LineHasError || !ListWanted(as, as.opt.CLIST)) return;
  SkipBlanks(as);
  as.CommentOffset = as.Line.offset;
  ListLine(as);
}

// A nested IF or $IF in a false section is listed as plain text with CLIST.
void ListNestedStatement(Assembler& as) {
  as.CommentLine = true;
  as.CodeLength = 0;
  as.ShowLineValue = false;
  if (ListWanted(as, as.opt.CLIST)) ListLine(as);
}

// The next line of the false section, or false at the end of the input,
// which ends the run with `endOfFileError` (a fatal error). The line counts
// for LineNumber as in the pass loop: not inside a macro expansion.
bool FetchSkippedLine(Assembler& as, int endOfFileError) {
  as.ShowLineValue = false;
  as.CommentOffset = 0;
  as.CommentLine = true;
  as.LineHasError = false;
  as.SavedBytesFlag = false;
  as.CodeLength = 0;
  if (!FetchCountedLine(as)) {
    ReportError(as, endOfFileError);
    return false;
  }
  as.LabelOffset = as.OpcodeOffset = as.OperandOffset = 0;
  return true;
}

// The word at the read offset, ended as the statement level ends an opcode
// word: by white space, by a point after its first character, and in the
// .a51 dialect by `(`, so that `$IF(X)` counts here as it opens a block there.
std::string_view ReadWord(Assembler& as) {
  LineCursor& line = as.Line;
  int32_t start = line.offset;
  while (true) {
    char c = line.Peek();
    if (c == '\0' || IsWhiteSpace(c) || (c == '.' && line.offset != start) || (c == '(' && as.PercentDialect)) break;
    ++line.offset;
  }
  return std::string_view(line.text).substr(static_cast<size_t>(start), static_cast<size_t>(line.offset - start));
}

// The first word of a skipped line that is to be examined: not blank, no
// comment line, and, with `firstColumnRule`, starting with white space, so a
// keyword in the first column or behind a label does not count.
std::string_view FirstWord(Assembler& as, bool firstColumnRule) {
  if (as.BlankLine || as.CommentLine) return {};
  if (firstColumnRule && !IsWhiteSpace(as.Line.At(0))) return {};
  as.Line.offset = 0;
  SkipBlanks(as);
  if (as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, false);
  as.OpcodeOffset = as.Line.offset;
  return ReadWord(as);
}

bool StartsWithEither(std::string_view word, char letter) {
  return !word.empty() && (word[0] == letter || word[0] == letter + ('a' - 'A'));
}

enum class SkipWord { kNone, kOpen, kEnd, kElse, kElseIf };

// The keyword tests of the IF-family scanner, from the keyword tables.
SkipWord ConditionalWord(std::string_view word) {
  if (word.size() < 3 || word.size() > 6) return SkipWord::kNone;
  if (StartsWithEither(word, 'I')) {
    if (FindKeywordIgnoringCase(kIfKeywords, word) != nullptr) return SkipWord::kOpen;
  } else if (StartsWithEither(word, 'E')) {
    const KeywordRow* row = FindKeywordIgnoringCase(kEndKeywords, word);
    if (row != nullptr && row->code == kEndC) return SkipWord::kEnd;
    if (row != nullptr && row->code == kElse) return SkipWord::kElse;
  }
  return SkipWord::kNone;
}

// The keyword tests of the $IF scanner: the four rows of the control family.
SkipWord ControlWord(std::string_view word) {
  if (word.size() < 3 || word.size() > 7 || word[0] != '$') return SkipWord::kNone;
  const KeywordRow* row = FindKeywordIgnoringCase(kDollarControls, word);
  if (row == nullptr) return SkipWord::kNone;
  switch (row->code) {
    case kCtrlIf: return SkipWord::kOpen;
    case kCtrlEndif: return SkipWord::kEnd;
    case kCtrlElse: return SkipWord::kElse;
    case kCtrlElseif: return SkipWord::kElseIf;
    default: return SkipWord::kNone;
  }
}

// A $ELSEIF that ends a false section of its chain: its condition is read as
// $IF reads one. True: the line goes back to the pass loop as a statement,
// listed with its value, and its section is active. False, or after an
// error: it is listed like a false $IF and the skip goes on.
bool ElseIfHolds(Assembler& as) {
  LineCursor& line = as.Line;
  SkipBlanks(as);
  as.OperandOffset = line.offset;
  if (as.InMacroExpansion) SubstituteParameters(as, line.offset, true);
  as.CommentLine = false;
  as.ShowLineValue = true;
  ExprValue expr;
  expr.TolerateUnknown = true;
  int32_t value = EvaluateExpression(as, expr, nullptr);
  as.LineValue = value;
  if (!as.LineHasError && line.offset != as.OperandOffset) CheckOperandEnd(as);
  if (value != 0 && !as.LineHasError) return true;
  ListStartingStatement(as);
  return false;
}

// Reads lines up to the end of the false section. `depth` is the run's
// counter of the family, which every nested opening and every closing word
// moves, as the statements would; `level` counts the nested blocks inside
// the section, whose ELSE and $ELSEIF mean nothing.
template <typename Classify>
void Skip(Assembler& as, int32_t& depth, bool stopAtElse, bool firstColumnRule, int endOfFileError,
          Classify classify) {
  ListStartingStatement(as);
  int32_t level = 0;
  while (true) {
    if (!FetchSkippedLine(as, endOfFileError)) return;
    SkipWord word = classify(FirstWord(as, firstColumnRule));
    bool listed = false;
    if (word == SkipWord::kOpen) {
      ++depth;
      ++level;
      ListNestedStatement(as);
      continue;
    }
    if (word == SkipWord::kEnd) {
      --depth;
      if (level == 0) break;
      --level;
      // A nested block that ends hands CLIST on to the rest of the skip.
      as.ListThisLine = as.opt.CLIST.Value() != 0;
    } else if (level == 0 && stopAtElse && word == SkipWord::kElse) {
      break;
    } else if (level == 0 && stopAtElse && word == SkipWord::kElseIf) {
      if (ElseIfHolds(as)) {
        // The line goes back to the pass loop as a statement.
        as.ListThisLine = as.opt.CLIST.Value() != 0;
        return;
      }
      listed = true;
    }
    as.CommentLine = true;
    if (!listed && ListWanted(as, as.opt.UNA)) ListLine(as);
  }
  // The closing line goes back to the pass loop as plain text, listed there
  // with CLIST.
  as.CommentLine = true;
  as.ListThisLine = as.opt.CLIST.Value() != 0;
}

}  // namespace

void SkipConditionalBlock(Assembler& as, bool stopAtElse) {
  Skip(as, as.Conditional.Depth, stopAtElse, true, 34, ConditionalWord);
}

void SkipControlBlock(Assembler& as, bool stopAtElse) {
  Skip(as, as.Conditional.ControlDepth, stopAtElse, false, 42, ControlWord);
}

}  // namespace ta51
