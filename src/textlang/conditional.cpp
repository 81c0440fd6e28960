// The statements of conditional assembly. An active section needs nothing
// but a depth counter: its lines flow through the pass loop, and ELSE or
// ENDC is met there as a statement. A false section is consumed here, by the
// statement that made it false, through the skip scanners.
#include "textlang/conditional.h"

#include <strings.h>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "core/keyword_tables.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

// ReadConditionalString fills a buffer of 200 bytes, so a string holds at
// most 199 characters.
constexpr size_t kConditionalStringBuffer = 200;

bool IsStringForm(int code) { return code == kIfC || code == kIfNC || code == kIfIC || code == kIfINC; }

bool IsStringCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '=' || c == '\'' ||
         c == '_' || c == '"';
}

int Sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

// The sign of the comparison of the two strings; false after an error.
bool CompareStrings(Assembler& as, int code, int32_t& raw) {
  std::string first, second;
  if (!ReadConditionalString(as, first)) return false;
  SkipBlanks(as);
  if (as.Line.Peek() != ',') {
    ReportError(as, 20);
    return false;
  }
  ++as.Line.offset;  // the second string begins right behind the comma
  if (!ReadConditionalString(as, second)) return false;
  if (code == kIfC || code == kIfNC)
    raw = Sign(first.compare(second));
  else
    raw = Sign(strcasecmp(first.c_str(), second.c_str()));
  return true;
}

// The expression of IFGT and its sisters. False after an error of the
// expression, which opens no block; a name that is not yet defined opens it
// with the value read.
bool EvaluateCondition(Assembler& as, int32_t& raw) {
  ExprValue expr;
  raw = EvaluateExpression(as, expr, nullptr);
  if (as.LineHasError) return false;
  if (as.ExprUndefined) ReportError(as, 4);
  return true;
}

// IFDEF and IFNDEF: 1 where the block is active. The read offset stays at
// the start of the name; text that is no name reports "Syntax error" and
// counts as an undefined name.
int32_t DefinedCondition(Assembler& as, int code) {
  bool defined = LookupSymbol(as, as.Line.Here()) != 0;
  return (code == kIfDef) == defined ? 1 : 0;
}

bool ConditionHolds(int code, int32_t raw) {
  switch (code) {
    case kIfC: case kIfIC: return raw == 0;
    case kIfNC: case kIfINC: return raw != 0;
    case kIfGT: return raw > 0;
    case kIfGE: return raw >= 0;
    case kIfLT: return raw < 0;
    case kIfLE: return raw <= 0;
    case kIfEQ: return raw == 0;
    case kIfNE: return raw != 0;
    default: return raw != 0;  // IFDEF, IFNDEF
  }
}

// Text behind the operands is checked before a block opens, so that a false
// IF is held to the same rule as a true one, whose line the pass loop checks.
// A statement that read nothing of its operand field is not checked.
bool TailAccepted(Assembler& as) {
  if (as.LineHasError || as.Line.offset == as.OperandOffset) return true;
  CheckOperandEnd(as);
  return !as.LineHasError;
}

int ListedWithClist(Assembler& as, int result) {
  as.ListThisLine = as.opt.CLIST.Value() != 0;
  return result;
}

}  // namespace

bool ReadConditionalString(Assembler& as, std::string& buffer) {
  buffer.clear();
  LineCursor& line = as.Line;
  while (true) {
    char c = line.Peek();
    if (c == '\0' || c == ',' || IsWhiteSpace(c)) return true;
    if (!IsStringCharacter(c)) {
      ReportError(as, 3);
      return false;
    }
    if (buffer.size() + 1 >= kConditionalStringBuffer) {
      ReportError(as, 6);
      return false;
    }
    buffer += c;
    ++line.offset;
  }
}

int ProcessConditional(Assembler& as, int code) {
  if (as.LineHasLabel) return ReportError(as, 56);
  SkipBlanks(as);
  if (as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, true);
  int32_t raw = 0;
  if (IsStringForm(code)) {
    if (!CompareStrings(as, code, raw)) return 0;
  } else if (code == kIfDef || code == kIfNDef) {
    raw = DefinedCondition(as, code);
  } else if (!EvaluateCondition(as, raw)) {
    return 0;
  }
  as.LineValue = raw;
  if (IsStringForm(code)) as.ShowLineValue = false;
  if (!TailAccepted(as)) return 0;
  ++as.Conditional.Depth;
  if (ConditionHolds(code, raw)) return ListedWithClist(as, kResultDone);
  SkipConditionalBlock(as, true);
  return kResultNoLabel;
}

int ProcessConditionalEnd(Assembler& as, int code) {
  if (as.LineHasLabel) return ReportError(as, 56);
  ConditionalState& state = as.Conditional;
  switch (code) {
    case kEndC:
      if (state.Depth == 0) return ReportError(as, 48);
      as.ShowLineValue = false;
      --state.Depth;
      return ListedWithClist(as, kResultNoLabel);
    case kElse:
      // Reached as a statement, so the section before was active.
      if (state.Depth == 0) return ReportError(as, 103);
      as.ShowLineValue = false;
      SkipConditionalBlock(as, false);
      return kResultNoLabel;
    default:
      return ReportError(as, 47);  // ENDM outside a definition
  }
}

// The $IF family. A chain of $IF, $ELSEIF and $ELSE assembles exactly one
// section, the first whose condition holds; once a section was taken, the
// conditions behind it are not evaluated.
int ProcessControlConditional(Assembler& as, int code) {
  if (as.LineHasLabel) return ReportError(as, 56);
  ConditionalState& state = as.Conditional;
  switch (code) {
    case kCtrlIf: {
      ExprValue expr;
      expr.TolerateUnknown = true;
      int32_t value = EvaluateExpression(as, expr, nullptr);
      if (as.LineHasError) return 0;
      as.LineValue = value;
      if (!TailAccepted(as)) return 0;
      ++state.ControlDepth;
      if (value != 0) return ListedWithClist(as, kResultDone);
      SkipControlBlock(as, true);
      return kResultNoLabel;
    }
    case kCtrlEndif:
      if (state.ControlDepth == 0) return ReportError(as, 40);
      as.ShowLineValue = false;
      --state.ControlDepth;
      return ListedWithClist(as, kResultNoLabel);
    case kCtrlElse:
    case kCtrlElseif:
      // Reached as a statement, so a section of this block was taken.
      if (state.ControlDepth == 0) return ReportError(as, code == kCtrlElse ? 103 : 41);
      as.ShowLineValue = false;
      SkipControlBlock(as, false);
      return kResultNoLabel;
    default:
      return kResultDone;
  }
}

}  // namespace ta51
