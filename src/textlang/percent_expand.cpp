// The running percent expansions: each body line rewritten with the call's
// arguments and local names, the %' comments cut, and the %IF filter, which
// drops the lines of false sections before anything else sees them.
#include <cctype>
#include <string>
#include <string_view>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "symbols/symbols.h"
#include "textlang/percent.h"

namespace ta51 {

namespace {

char Upper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

// Whether `word` (in upper case) stands in `text` at `at`, case ignored.
bool WordAt(std::string_view text, size_t at, std::string_view word) {
  if (at + word.size() > text.size()) return false;
  for (size_t i = 0; i < word.size(); ++i)
    if (Upper(text[at + i]) != word[i]) return false;
  return true;
}

// `word` anywhere in the line, case ignored, with no name character behind
// it and, unless `anyBefore`, none in front of it either.
bool HoldsWord(std::string_view text, std::string_view word, bool anyBefore) {
  for (size_t at = 0; at + word.size() <= text.size(); ++at) {
    if (!WordAt(text, at, word)) continue;
    bool endsWord = at + word.size() == text.size() || !IsNameChar(text[at + word.size()]);
    bool startsWord = anyBefore || at == 0 || !IsNameChar(text[at - 1]);
    if (endsWord && startsWord) return true;
  }
  return false;
}

bool HoldsPercentIf(std::string_view text) {
  return text.find('%') != std::string_view::npos && HoldsWord(text, "%IF", true);
}

// The same line, as the definition wrote it, stands in a message's echo.
void ReportAtBodyLine(Assembler& as, const PercentFrame& frame, size_t line, int number, std::string_view detail) {
  const std::vector<std::string>& body = frame.macro->body;
  as.Line.text = line < body.size() ? body[line] : std::string();
  if (as.Line.text.empty() || as.Line.text.back() != '\n') as.Line.text += '\n';
  as.Line.offset = 0;
  uint32_t current = as.LineNumber;
  as.LineNumber = frame.callLine;
  ReportError(as, number, true, detail);
  as.LineNumber = current;
}

// One replacement of `form` by `replacement`; false when the line would
// grow past its bound or the rewrite has made too many replacements.
enum class Rewrite { kNone, kDone, kTooLong, kEndless };

Rewrite ReplaceFirst(std::string& text, const std::string& form, std::string_view replacement, int32_t& count) {
  size_t at = text.find(form);
  if (at == std::string::npos) return Rewrite::kNone;
  if (text.size() - form.size() + replacement.size() > kPercentLineLength) return Rewrite::kTooLong;
  if (++count > kPercentReplacementLimit) return Rewrite::kEndless;
  text.replace(at, form.size(), replacement);
  return Rewrite::kDone;
}

// Sweeps over the locals, then the parameters, each replacing its first
// form, until a sweep changes nothing. Replacement text is searched again.
Rewrite ReplaceForms(std::string& text, const PercentFrame& frame) {
  const PercentMacro& macro = *frame.macro;
  int32_t count = 0;
  bool changed = true;
  while (changed) {
    changed = false;
    for (size_t i = 0; i < macro.localForms.size(); ++i) {
      Rewrite r = ReplaceFirst(text, macro.localForms[i], frame.localTexts[i], count);
      if (r == Rewrite::kTooLong || r == Rewrite::kEndless) return r;
      changed |= r == Rewrite::kDone;
    }
    for (size_t i = 0; i < macro.parameterForms.size(); ++i) {
      std::string_view argument = i < frame.argumentCount ? std::string_view(frame.arguments[i]) : "";
      Rewrite r = ReplaceFirst(text, macro.parameterForms[i], argument, count);
      if (r == Rewrite::kTooLong || r == Rewrite::kEndless) return r;
      changed |= r == Rewrite::kDone;
    }
  }
  return Rewrite::kNone;
}

// A %' comment ends at the next quote, which goes with it, or at the end of
// the line.
void CutComments(std::string& text) {
  for (size_t at = text.find("%'"); at != std::string::npos; at = text.find("%'", at)) {
    size_t close = text.find('\'', at + 2);
    if (close == std::string::npos) {
      text.erase(at);
      text += '\n';
      return;
    }
    text.erase(at, close + 1 - at);
  }
}

// The frame's next body line, rewritten, into the text buffer; false after
// a report.
bool NextPercentBodyLine(Assembler& as, PercentFrame& frame) {
  std::string& text = as.Percent.PercentTextBuffer;
  size_t line = frame.next++;
  text = frame.macro->body[line];
  if (text.find('%') == std::string::npos) return true;
  switch (ReplaceForms(text, frame)) {
    case Rewrite::kTooLong:
      ReportAtBodyLine(as, frame, line, 87, "a line of " + frame.macro->name + " grows past 15360 characters");
      return false;
    case Rewrite::kEndless:
      ReportAtBodyLine(as, frame, line, 6, "the replacement in a line of " + frame.macro->name + " does not end");
      return false;
    default: break;
  }
  CutComments(text);
  return true;
}

// The %IF filter on one body line: true when the line is to be assembled.
// FI and ELSE count only while the frame's own body has a %IF open, so the
// body of a call made in an assembled section cannot close its caller's.
bool PassesFilter(PercentMacroEngine& engine, const PercentFrame& frame, std::string_view text) {
  int32_t& state = engine.PercentIfState;
  if (state == 0) return true;
  bool opens = HoldsPercentIf(text);
  if (state == 1 && opens) return true;  // the statement opens it
  if (state >= 2 && opens) {
    engine.PercentStateStack.push_back(state);
    state = 3;
  }
  if (engine.PercentStateStack.size() > frame.ifBase) {
    if (HoldsWord(text, "FI", false)) {
      state = engine.PercentStateStack.back();
      engine.PercentStateStack.pop_back();
      return false;
    }
    if (state <= 2 && HoldsWord(text, "ELSE", false)) {
      state = state == 2 ? 1 : 3;
      return false;
    }
  }
  return state == 1;
}

void FinishLine(std::string& text) {
  if (text.empty() || text.back() != '\n') text += '\n';
}

// A line that stands for a bound broken: empty, and not listed, since the
// report has put the line in the list file already.
bool GiveReportedLine(Assembler& as, std::string& text) {
  text.assign(1, '\n');
  as.ListThisLine = false;
  as.Percent.LineFrame = 0;
  return true;
}

void ReportLineBudget(Assembler& as, const PercentFrame& frame) {
  PercentMacroEngine& engine = as.Percent;
  engine.Exhausted = true;
  ReportAtBodyLine(as, frame, frame.next, 6, "percent macro expansions give at most 1000000 lines in a pass");
  EndPercentExpansions(as, engine.Floor);
}

}  // namespace

void EndPercentExpansions(Assembler& as, int32_t depth) {
  PercentMacroEngine& engine = as.Percent;
  if (engine.Depth <= depth) return;
  const PercentFrame& lowest = engine.Frames[static_cast<size_t>(depth)];
  if (engine.PercentStateStack.size() > lowest.ifBase) engine.PercentStateStack.resize(lowest.ifBase);
  engine.PercentIfState = lowest.ifEntryState;
  engine.Depth = depth;
}

bool NextPercentLine(Assembler& as, std::string& text) {
  PercentMacroEngine& engine = as.Percent;
  while (engine.Depth > engine.Floor) {
    PercentFrame& frame = engine.Frames[static_cast<size_t>(engine.Depth) - 1];
    if (engine.Exhausted) {
      EndPercentExpansions(as, engine.Floor);
      break;
    }
    if (frame.next >= frame.macro->body.size()) {
      // Only a frame whose %IF is still open outlives its last line.
      ReportAtBodyLine(as, frame, frame.openIfLine, 11, "%IF without FI in the body of " + frame.macro->name);
      EndPercentExpansions(as, engine.Depth - 1);
      return GiveReportedLine(as, text);
    }
    if (engine.BodyLines == kPercentLineLimit) {
      ReportLineBudget(as, frame);
      return GiveReportedLine(as, text);
    }
    ++engine.BodyLines;
    if (!NextPercentBodyLine(as, frame)) {
      EndPercentExpansions(as, engine.Floor);
      return GiveReportedLine(as, text);
    }
    bool wanted = PassesFilter(engine, frame, engine.PercentTextBuffer);
    // A frame ends with its last line, so that a call on that line runs in
    // place of it; one with a %IF open stays to have that reported.
    bool ended = frame.next == frame.macro->body.size() && engine.PercentStateStack.size() <= frame.ifBase;
    engine.LineFrame = ended ? 0 : engine.Depth;
    if (ended) --engine.Depth;
    if (wanted) {
      text.swap(engine.PercentTextBuffer);
      FinishLine(text);
      return true;
    }
  }
  engine.LineFrame = 0;
  return false;
}

void ResetPercentInstances(Assembler& as) { as.Percent.PercentInstanceCounter = 0; }

}  // namespace ta51
