// SubstituteParameters: the rewrite of the current line with the arguments of
// the running call, at the moment the parser reaches a word. Positional
// bodies rewrite the backslash forms of one word; named bodies rewrite the
// parameter names and `\@` in the rest of the line.
#include <algorithm>
#include <string>
#include <vector>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "symbols/symbols.h"
#include "textlang/macro.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

using Escape = MacroState::Escape;

bool IsDigitOrLetter(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

int SlotOf(char symbol) {
  if (symbol >= '0' && symbol <= '9') return symbol - '0';
  if (symbol >= 'a' && symbol <= 'z') return symbol - 'a' + 10;
  return symbol - 'A' + 10;
}

// The generated label of a slot, made on first use with the next number;
// nullptr when the numbers are used up (error 50).
const char* GeneratedLabel(Assembler& as, std::array<char, 8>& slot, char lead) {
  if (slot[0] == '\0') {
    if (as.UniqueLabelCounter > kGeneratedLabelLimit) {
      ReportError(as, 50);
      return nullptr;
    }
    // The lead character and the number in five digits, "%c%05d".
    int32_t number = as.UniqueLabelCounter++;
    slot[0] = lead;
    for (int digit = 5; digit >= 1; --digit, number /= 10) slot[static_cast<size_t>(digit)] = static_cast<char>('0' + number % 10);
    slot[6] = '\0';
  }
  return slot.data();
}

// The line flags as FetchLine sets them, here from the rewritten text on.
void RecomputeLineFlags(Assembler& as, size_t position) {
  const std::string& text = as.Line.text;
  as.CommentLine = text.compare(position, 1, ";") == 0 || text.compare(position, 2, "//") == 0;
  as.BlankLine = text.find_first_not_of(" \t\n", position) == std::string::npos;
  if (as.BlankLine) as.ShowLineValue = false;
}

// Puts `rewritten`, which ends in the line's new line, over the line from
// `position` on; refused (error 87) when the line would pass the limit.
bool WriteBack(Assembler& as, size_t position, const std::string& rewritten) {
  size_t length = position + rewritten.size();
  if (!rewritten.empty() && rewritten.back() == '\n') --length;
  if (length > kMacroLineLimit) {
    ReportError(as, 87);
    return false;
  }
  std::string& text = as.Line.text;
  text.resize(position);
  text += rewritten;
  return true;
}

// The backslash forms of the word at `position` that the recursive rewrite
// of the definition reaches: the first, if it comes before any white space,
// then each that follows the previous form with no blank or `;` between.
void FindEscapes(const std::string& text, size_t position, std::vector<Escape>& escapes) {
  escapes.clear();
  size_t at = text.find_first_of("\\ \t\n", position);
  while (at != std::string::npos && text[at] == '\\') {
    Escape escape{at, 0, '\0', false, false, {}};
    size_t symbolAt = at + 1;
    if (symbolAt < text.size() && text[symbolAt] == '.') {
      escape.point = true;
      ++symbolAt;
    }
    escape.symbol = symbolAt < text.size() ? text[symbolAt] : '\0';
    if (escape.symbol == '\n' || escape.symbol == '\0') {
      // Cut by the line end: nothing behind it is rewritten.
      escape.end = symbolAt;
      escapes.push_back(escape);
      break;
    }
    escape.end = symbolAt + 1;
    escapes.push_back(escape);
    char behind = escape.end < text.size() ? text[escape.end] : '\0';
    if (behind == '\0' || behind == ' ' || behind == '\t' || behind == ';') break;
    at = text.find_first_of("\\ \t\n", escape.end);
  }
}

// The rewrite of the definition recurses from each form to the tail behind
// it and builds its result on the way back; this does the same in two
// sweeps. Generated labels are numbered in the order of the recursion, from
// the last form of the word to the first.
void SubstitutePositional(Assembler& as, MacroCallFrame& frame, size_t position, bool operandField) {
  MacroState& state = as.Macros;
  const std::string& text = as.Line.text;
  std::vector<Escape>& escapes = state.Escapes;
  FindEscapes(text, position, escapes);
  if (escapes.empty()) return;
  for (size_t i = escapes.size(); i-- > 0;) {
    Escape& escape = escapes[i];
    if (!escape.point && IsDigitOrLetter(escape.symbol)) {
      escape.replacement = ArgumentText(as, escape.symbol);
    } else if (operandField && escape.point && IsDigitOrLetter(escape.symbol)) {
      const char* label = GeneratedLabel(as, frame.MacroLocalTable[static_cast<size_t>(SlotOf(escape.symbol))], '.');
      // Without a number the form stays as it was written.
      escape.replacement = label != nullptr ? std::string_view(label)
                                            : std::string_view(text).substr(escape.at, escape.end - escape.at);
    } else {
      escape.cut = true;  // \@, \.x at the opcode, any other character
    }
  }
  std::string& out = state.Scratch;
  out.assign(text, position, escapes[0].at - position);
  for (size_t i = 0; i < escapes.size(); ++i) {
    const Escape& escape = escapes[i];
    if (escape.cut) {
      out += '\n';
      break;
    }
    out += escape.replacement;
    size_t next = i + 1 < escapes.size() ? escapes[i + 1].at : text.size();
    out.append(text, escape.end, next - escape.end);
  }
  if (!WriteBack(as, position, out)) return;
  if (operandField) RecomputeLineFlags(as, position);
}

bool StopsParameterScan(const std::string& text, size_t at) {
  char c = text[at];
  if (c == '\n' || c == ';') return true;
  return c == '/' && at + 1 < text.size() && (text[at + 1] == '*' || text[at + 1] == '/');
}

// Sweep 1: each parameter that has an argument, by whole words, case kept;
// `&&` ahead of the word and `&&` behind it go with it.
bool ReplaceParameters(const MacroCallFrame& frame, std::string& work) {
  bool changed = false;
  const std::vector<std::string>& parameters = frame.RunningNamedMacro->ExtraOrEmpty().parameters;
  const size_t used = std::min(parameters.size(), static_cast<size_t>(frame.ArgumentCount));
  for (size_t i = 0; i < used; ++i) {
    const std::string& parameter = parameters[i];
    const std::string& argument = frame.NamedArguments[i];
    size_t at = 0;
    while (at < work.size() && !StopsParameterScan(work, at)) {
      if (!IsNameStart(work[at])) {
        ++at;
        continue;
      }
      size_t end = at + 1;
      while (end < work.size() && IsNameChar(work[end])) ++end;
      if (end - at != parameter.size() || work.compare(at, end - at, parameter) != 0) {
        at = end;
        continue;
      }
      size_t from = at, to = end;
      if (from >= 2 && work[from - 1] == '&' && work[from - 2] == '&') from -= 2;
      if (to + 1 < work.size() && work[to] == '&' && work[to + 1] == '&') to += 2;
      work.replace(from, to - from, argument);
      at = from + argument.size();
      changed = true;
    }
  }
  return changed;
}

// Sweep 2: `\@` becomes the call's generated label, any other backslash goes
// with the character behind it; a `/* */` comment closed on the line is cut.
bool ReplaceBackslashes(Assembler& as, MacroCallFrame& frame, std::string& work) {
  bool changed = false;
  size_t at = 0;
  while (at < work.size()) {
    char c = work[at];
    if (c == '\n' || c == ';') break;
    if (c == '/' && at + 1 < work.size() && work[at + 1] == '/') break;
    if (c == '/' && at + 1 < work.size() && work[at + 1] == '*') {
      size_t close = work.find("*/", at + 2);
      if (close == std::string::npos) break;
      work.erase(at, close + 2 - at);
      changed = true;
      continue;
    }
    if (c != '\\') {
      ++at;
      continue;
    }
    char symbol = at + 1 < work.size() ? work[at + 1] : '\0';
    if (symbol == '@') {
      const char* label = GeneratedLabel(as, frame.MacroLocalTable[0], '_');
      if (label == nullptr) {
        at += 2;
        continue;
      }
      work.replace(at, 2, label);
      at += std::char_traits<char>::length(label);
    } else {
      work.erase(at, symbol == '\n' || symbol == '\0' ? 1 : 2);
    }
    changed = true;
  }
  return changed;
}

void SubstituteNamed(Assembler& as, MacroCallFrame& frame, size_t position, bool operandField) {
  std::string& work = as.Macros.Scratch;
  work.assign(as.Line.text, position, std::string::npos);
  bool changed = ReplaceParameters(frame, work);
  changed = ReplaceBackslashes(as, frame, work) || changed;
  if (!changed || !WriteBack(as, position, work)) return;
  if (operandField) RecomputeLineFlags(as, position);
}

}  // namespace

void SubstituteParameters(Assembler& as, int32_t position, bool operandField) {
  if (!as.InMacroExpansion) return;
  MacroCallFrame* frame = as.Macros.Current();
  if (frame == nullptr || position < 0) return;
  const std::string& text = as.Line.text;
  size_t at = static_cast<size_t>(position);
  if (at >= text.size() || text[at] == ';') return;
  if (frame->RunningNamedMacro != nullptr)
    SubstituteNamed(as, *frame, at, operandField);
  else
    SubstitutePositional(as, *frame, at, operandField);
}

}  // namespace ta51
