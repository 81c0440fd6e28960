// The statements of the percent language: a call, which only pushes a frame
// for the line reader to serve, the keywords at the opcode field, and %IF,
// which sets the filter that the following lines of its body meet.
#include <cctype>
#include <cstdio>
#include <string>

#include "core/diagnostics.h"
#include "core/keyword_tables.h"
#include "core/statement.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "textlang/percent.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

// Reports with the caret at `at`; false, for the readers to return.
bool ReportAt(Assembler& as, int32_t at, int number) {
  as.Line.offset = at;
  ReportError(as, number);
  return false;
}

// The argument list in parentheses from `at` on: each argument runs to
// white space, `,` or `)`; blanks may stand around the commas. The
// character that ends the list is taken with it, normally the `)`.
bool ReadArgumentList(Assembler& as, PercentFrame& frame, int32_t at) {
  const LineCursor& line = as.Line;
  frame.argumentCount = 0;
  while (IsBlank(line.At(at))) ++at;
  while (true) {
    int32_t start = at;
    for (char c = line.At(at); c != '\0' && c != ')' && c != ',' && !IsWhiteSpace(c); c = line.At(at)) ++at;
    if (frame.arguments.size() == frame.argumentCount) frame.arguments.emplace_back();
    frame.arguments[frame.argumentCount++].assign(line.text, static_cast<size_t>(start),
                                                  static_cast<size_t>(at - start));
    while (IsBlank(line.At(at))) ++at;
    char c = line.At(at);
    if (c == '\n' || c == '\0') return ReportAt(as, at, 5);
    ++at;
    if (c != ',') break;
    while (IsBlank(line.At(at))) ++at;
  }
  as.Line.offset = at;
  return true;
}

// The arguments of a call, from the character behind the name. A macro
// with parameters needs its list; one without may have an empty list, or
// none, and then the rest of the line meets the tail check. The list, or
// what follows the name, is the operand field of the listing.
bool ReadArguments(Assembler& as, const PercentMacro& macro, PercentFrame& frame) {
  const LineCursor& line = as.Line;
  int32_t at = line.offset;
  frame.argumentCount = 0;
  while (IsBlank(line.At(at))) ++at;
  as.OperandOffset = at;
  if (line.At(line.offset) != '(' && macro.parameters.empty()) return true;
  if (line.At(at) != '(') return ReportAt(as, at, 58);
  if (!ReadArgumentList(as, frame, at + 1)) return false;
  if (frame.argumentCount >= macro.parameters.size()) return true;
  std::string detail = macro.name + " takes " + std::to_string(macro.parameters.size()) +
                       " arguments, the call gives " + std::to_string(frame.argumentCount);
  ReportError(as, 16, true, detail);
  return false;
}

// Each call of a macro with local names gets the next instance number.
void MakeLocalNames(PercentMacroEngine& engine, const PercentMacro& macro, PercentFrame& frame) {
  if (macro.locals.empty()) return;
  char suffix[16];
  std::snprintf(suffix, sizeof suffix, "%02X", static_cast<unsigned>(engine.PercentInstanceCounter++));
  frame.suffix = suffix;
  frame.localTexts.resize(macro.locals.size());
  for (size_t i = 0; i < macro.locals.size(); ++i) frame.localTexts[i] = macro.locals[i] + frame.suffix;
}

bool HasThenAt(const LineCursor& line) {
  static constexpr char kThen[] = "THEN";
  for (int32_t i = 0; i < 4; ++i)
    if (std::toupper(static_cast<unsigned char>(line.At(line.offset + i))) != kThen[i]) return false;
  return !IsNameChar(line.At(line.offset + 4));
}

// Whether the current line came from the frame on top of the stack, which
// is still running: a %IF must find its FI in the rest of that body.
bool FromRunningBody(const Assembler& as) {
  const PercentMacroEngine& engine = as.Percent;
  return as.SavedFromSourceValid && engine.LineFrame > engine.Floor && engine.LineFrame == engine.Depth;
}

// %IF expression [THEN]: a value above 0 assembles the lines behind it up
// to ELSE or FI. A condition that fails counts as false, so that its ELSE
// and FI still pair with it.
int PercentIf(Assembler& as) {
  PercentMacroEngine& engine = as.Percent;
  if (!FromRunningBody(as)) return ReportError(as, 11, true, "%IF stands only in a percent macro body, with its FI");
  ExprValue expr;
  int32_t value = EvaluateExpression(as, expr, nullptr);
  if (!as.LineHasError && as.ExprUndefined) ReportError(as, 4);
  PercentFrame& frame = engine.Frames[static_cast<size_t>(engine.Depth) - 1];
  if (engine.PercentStateStack.size() == frame.ifBase) frame.openIfLine = frame.next - 1;
  engine.PercentStateStack.push_back(engine.PercentIfState);
  engine.PercentIfState = !as.LineHasError && value > 0 ? 1 : 2;
  if (as.LineHasError) return 0;
  as.LineValue = value;
  SkipBlanks(as);
  if (HasThenAt(as.Line)) as.Line.offset += 4;
  return kResultDone;
}

}  // namespace

bool TryPercentCall(Assembler& as) {
  PercentMacroEngine& engine = as.Percent;
  const LineCursor& line = as.Line;
  const int32_t nameStart = line.offset + 1;
  int32_t at = nameStart;
  while (IsNameChar(line.At(at))) ++at;
  if (at == nameStart) return false;
  engine.Key.assign(line.text, static_cast<size_t>(nameStart), static_cast<size_t>(at - nameStart));
  auto found = engine.Macros.find(engine.Key);
  if (found == engine.Macros.end()) return false;
  const PercentMacro& macro = *found->second;
  as.Line.offset = at;
  if (engine.Exhausted) {
    ReportError(as, 6, true, "percent macro expansions give at most 1000000 lines in a pass");
    return true;
  }
  if (engine.Depth >= kPercentDepthLimit) {
    ReportError(as, 6, true, "percent macro calls nest at most 256 deep");
    EndPercentExpansions(as, engine.Floor);
    return true;
  }
  const auto index = static_cast<size_t>(engine.Depth);
  if (engine.Frames.size() <= index) engine.Frames.emplace_back();
  PercentFrame& frame = engine.Frames[index];
  if (!ReadArguments(as, macro, frame)) return true;
  frame.macro = &macro;
  frame.next = 0;
  frame.ifBase = engine.PercentStateStack.size();
  frame.ifEntryState = engine.PercentIfState;
  frame.callLine = as.LineNumber;
  MakeLocalNames(engine, macro, frame);
  ++engine.Depth;
  return true;
}

int PercentKeyword(Assembler& as, int code) {
  switch (code) {
    case kPercentDefine: return DefinePercentMacro(as);
    case kPercentIf: return PercentIf(as);
    default: return kResultDone;  // a valid statement that does nothing
  }
}

PercentFloorGuard::PercentFloorGuard(Assembler& as)
    : as_(as),
      floor_(as.Percent.Floor),
      lineFrame_(as.Percent.LineFrame),
      fromSourceFile_(as.FromSourceFile),
      savedValid_(as.SavedFromSourceValid),
      saved_(as.SavedFromSource) {
  as.Percent.Floor = as.Percent.Depth;
  as.Percent.LineFrame = 0;
  // The nested pass reads lines of a file or a body, which count as such.
  if (as.SavedFromSourceValid) {
    as.FromSourceFile = as.SavedFromSource;
    as.SavedFromSourceValid = false;
  }
}

PercentFloorGuard::~PercentFloorGuard() {
  EndPercentExpansions(as_, as_.Percent.Floor);  // what an END left running
  as_.Percent.Floor = floor_;
  as_.Percent.LineFrame = lineFrame_;
  as_.FromSourceFile = fromSourceFile_;
  as_.SavedFromSourceValid = savedValid_;
  as_.SavedFromSource = saved_;
}

}  // namespace ta51
