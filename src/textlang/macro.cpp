// MACRO and .MACRO: the stored bodies, the arguments of a call and the state
// of the running calls. The statement handlers that read lines and run the
// nested pass are in driver/macro_statements.cpp.
#include "textlang/macro.h"

#include <cctype>
#include <string>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "symbols/symbols.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

bool NoCase(const Assembler& as) { return as.opt.NOCASE.Value() != 0; }

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i]))) return false;
  return true;
}

// Whether a name starts at `at`, without reading it into NameBuffer (a first
// column word of any length must not report "Name too big" here).
bool NameStartsAt(const std::string& text, size_t at) {
  char first = at < text.size() ? text[at] : '\0';
  if (!IsNameStart(first)) return false;
  if (first == '.' || first == '_') return at + 1 < text.size() && IsNameChar(text[at + 1]);
  return true;
}

size_t NameEnd(const std::string& text, size_t at) {
  size_t end = at + 1;
  while (end < text.size() && IsNameChar(text[end])) ++end;
  return end;
}

// The first word at or behind `from`: blanks, tabs and new lines before it
// are passed over, and one of them or a comment ends it.
std::string_view FirstWord(const std::string& text, size_t from) {
  size_t start = text.find_first_not_of(" \t\n", from);
  if (start == std::string::npos) return {};
  size_t end = text.find_first_of(" \t\n;", start);
  if (end == std::string::npos) end = text.size();
  return std::string_view(text).substr(start, end - start);
}

// NARG and narg read as the argument count of the running call.
void DefineArgumentCount(Assembler& as, int32_t count) {
  for (const char* name : {"NARG", "narg"}) {
    SymbolEntry* symbol = FindSymbol(as, name);
    if (symbol == nullptr) {
      SymbolEntry entry;
      entry.type = T_MACROVALUE;
      entry.value = count;
      as.Symbols.Insert(name, entry, NoCase(as));
    } else if (symbol->type == T_MACROVALUE) {
      symbol->value = count;
      as.Symbols.SetExpression(*symbol, {});
    }
  }
}

int32_t RunningArgumentCount(Assembler& as) {
  const MacroCallFrame* frame = as.Macros.Current();
  return frame != nullptr ? frame->ArgumentCount : 0;
}

// Where an argument scan stopped: the comment that cuts the private copy,
// if one was met, and the end of the list for the listing.
struct ArgumentScan {
  bool ok = false;
  int32_t comment = -1;
  int32_t end = 0;
};

// Expansions without end that fan out below the depth bound, a macro that
// calls itself twice, say, meet this one; every running body ends.
void ReportBodyLineLimit(Assembler& as) {
  as.Macros.Exhausted = true;
  as.Macros.Unwinding = true;
  ReportError(as, 6, true, "macro expansions give at most 1000000 lines in a pass");
}

int ArgumentOverflow(Assembler& as, int32_t at) {
  as.Line.offset = at;
  return ReportError(as, 6, true, "a macro call takes at most 36 arguments");
}

int ArgumentTooLong(Assembler& as, int32_t at) {
  as.Line.offset = at;
  return ReportError(as, 87);
}

// The arguments of a positional call, from `start` on; records each text's
// offset from `start` and its length.
ArgumentScan ScanPositionalArguments(Assembler& as, MacroCallFrame& frame, int32_t start) {
  const LineCursor& line = as.Line;
  ArgumentScan scan;
  int32_t at = start;
  frame.ArgumentCount = 0;
  char c = line.At(at);
  if (c == '\n' || c == '\0' || c == ';') {
    if (c == ';') scan.comment = at;
    scan.end = at;
    scan.ok = true;
    return scan;
  }
  while (true) {
    if (frame.ArgumentCount == kMacroArgumentSlots) {
      ArgumentOverflow(as, at);
      return scan;
    }
    int32_t textStart, textEnd;
    if (line.At(at) == '(') {
      textStart = ++at;
      while (true) {
        char d = line.At(at);
        if (d == '\n' || d == '\0') {
          as.Line.offset = at;
          ReportError(as, 5);
          return scan;
        }
        char next = line.At(at + 1);
        if (d == ')' && (next == ',' || IsWhiteSpace(next))) break;
        ++at;
        if (IsWhiteSpace(d)) {
          while (IsBlank(line.At(at))) ++at;
          if (as.InMacroExpansion) SubstituteParameters(as, at, false);
        }
      }
      textEnd = at++;
    } else {
      textStart = at;
      while (true) {
        char d = line.At(at);
        if (d == ',' || d == '\0' || IsWhiteSpace(d)) break;
        if (d == ';') {
          scan.comment = at;
          break;
        }
        ++at;
      }
      textEnd = at;
    }
    if (static_cast<size_t>(textEnd - textStart) > kMacroArgumentLimit) {
      ArgumentTooLong(as, textStart);
      return scan;
    }
    int slot = frame.ArgumentCount++;
    frame.MacroArgumentTable[slot] = textStart - start;
    frame.ArgumentLength[slot] = static_cast<uint8_t>(textEnd - textStart);
    while (line.At(at) != '\n' && IsWhiteSpace(line.At(at))) ++at;
    char behind = line.At(at);
    if (behind == '\n' || behind == '\0' || behind == ';') {
      if (behind == ';') scan.comment = at;
      scan.end = at;
      scan.ok = true;
      return scan;
    }
    ++at;  // the separator, whatever it is
    while (IsBlank(line.At(at))) ++at;
    if (line.At(at) == '\0' || IsWhiteSpace(line.At(at))) {
      as.Line.offset = at;
      ReportError(as, 11);
      return scan;
    }
  }
}

// The arguments of a named call: each runs to `,`, `;` or the line end with
// its blanks removed; an empty one, or anything but a comma behind one,
// ends the list.
ArgumentScan ScanNamedArguments(Assembler& as, MacroCallFrame& frame, int32_t start) {
  const LineCursor& line = as.Line;
  ArgumentScan scan;
  int32_t at = start;
  frame.ArgumentCount = 0;
  while (IsBlank(line.At(at))) ++at;
  while (line.At(at) != '\n' && line.At(at) != '\0') {
    int32_t argumentStart = at;
    size_t slot = static_cast<size_t>(frame.ArgumentCount);
    if (slot == frame.NamedArguments.size()) frame.NamedArguments.emplace_back();
    std::string& argument = frame.NamedArguments[slot];
    argument.clear();
    for (char d = line.At(at); d != ',' && d != ';' && d != '\n' && d != '\0'; d = line.At(++at))
      if (!IsBlank(d)) argument += d;
    if (argument.empty()) break;
    if (frame.ArgumentCount == kMacroArgumentSlots) {
      ArgumentOverflow(as, argumentStart);
      return scan;
    }
    if (argument.size() > kMacroArgumentLimit) {
      ArgumentTooLong(as, argumentStart);
      return scan;
    }
    ++frame.ArgumentCount;
    if (line.At(at) != ',') break;
    ++at;
    while (IsBlank(line.At(at))) ++at;
  }
  if (line.At(at) == ';') scan.comment = at;
  scan.end = at;
  scan.ok = true;
  return scan;
}

}  // namespace

bool NextMacroBodyLine(Assembler& as, std::string& text) {
  MacroState& state = as.Macros;
  MacroCallFrame* frame = state.Current();
  if (frame == nullptr || frame->Macro == nullptr || state.Unwinding) return false;
  const std::string& body = frame->Macro->ExtraOrEmpty().body;
  size_t from = frame->MacroBodyPosition;
  if (from >= body.size()) return false;
  if (state.BodyLines == kMacroBodyLineLimit) {
    ReportBodyLineLimit(as);
    return false;
  }
  ++state.BodyLines;
  size_t end = body.find('\n', from);
  end = end == std::string::npos ? body.size() : end + 1;
  text.assign(body, from, end - from);
  frame->MacroBodyPosition = end;
  return true;
}

std::string_view ArgumentText(const Assembler& as, char symbol) {
  const MacroCallFrame* frame = as.Macros.Current();
  if (frame == nullptr) return {};
  int index;
  if (symbol >= '0' && symbol <= '9') {
    index = symbol - '0';
  } else {
    char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(symbol)));
    if (upper < 'A' || upper > 'Z') return {};
    index = upper - 'A' + 10;
  }
  if (index >= frame->ArgumentCount) return {};
  return std::string_view(frame->CallText).substr(static_cast<size_t>(frame->MacroArgumentTable[index]),
                                                  frame->ArgumentLength[index]);
}

// Parameter names of a named definition: each starts with a character that
// can begin a name and runs on over name characters; anything else between
// them is passed over, up to a new line or `;`.
std::vector<std::string> ReadParameterList(const std::string& text, size_t from) {
  std::vector<std::string> parameters;
  size_t at = from;
  while (at < text.size() && text[at] != '\n' && text[at] != ';') {
    if (!IsNameStart(text[at])) {
      ++at;
      continue;
    }
    size_t end = NameEnd(text, at);
    parameters.emplace_back(text, at, end - at);
    at = end;
  }
  return parameters;
}

bool ClosesDefinition(const Assembler& as, const char* terminator) {
  const std::string& text = as.Line.text;
  if (text.empty() || !IsWhiteSpace(text[0]) || as.CommentLine) return false;
  return EqualIgnoringCase(FirstWord(text, 0), terminator);
}

DefinitionLine TakeDefinitionLine(Assembler& as, SymbolEntry& macro, const char* terminator) {
  const std::string& text = as.Line.text;
  if (ClosesDefinition(as, terminator)) return DefinitionLine::Closes;
  if (!as.CommentLine || as.Macros.KeepMacroComments) {
    std::string& body = as.Symbols.ExtraOf(macro).body;
    body += text;
    if (body.back() != '\n') body += '\n';
  }
  size_t behindName = 0;
  if (NameStartsAt(text, 0)) {
    behindName = NameEnd(text, 0);
    if (behindName < text.size() && text[behindName] == ':') ++behindName;
  }
  std::string_view word = FirstWord(text, behindName);
  if (EqualIgnoringCase(word, "MACR") || EqualIgnoringCase(word, "MACRO")) return DefinitionLine::Nests;
  return DefinitionLine::Stored;
}

bool BeginMacroCall(Assembler& as, const SymbolEntry& macro, bool named) {
  MacroState& state = as.Macros;
  if (as.Line.text.size() > kMacroLineLimit + 1) {
    ReportError(as, 87);
    return false;
  }
  if (state.Exhausted) {
    ReportBodyLineLimit(as);
    return false;
  }
  if (state.Depth >= kMacroDepthLimit) {
    ReportError(as, 6, true, "macro calls nest at most 256 deep");
    state.Unwinding = true;
    return false;
  }
  // The new frame is made ready while the caller's stays current, so that
  // an outer call's arguments reach the operands of this one.
  const size_t index = static_cast<size_t>(state.Depth);
  if (state.Frames.size() <= index) state.Frames.emplace_back();
  MacroCallFrame& frame = state.Frames[index];
  for (auto& slot : frame.MacroLocalTable) slot[0] = '\0';
  SkipBlanks(as);
  if (as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, false);
  const int32_t start = as.Line.offset;
  ArgumentScan scan = named ? ScanNamedArguments(as, frame, start) : ScanPositionalArguments(as, frame, start);
  if (!scan.ok || as.LineHasError) return false;
  // The copy stops at the comment, so that no argument runs into it.
  const std::string& text = as.Line.text;
  size_t cut = scan.comment >= 0 ? static_cast<size_t>(scan.comment) : text.size();
  frame.CallText.assign(text, static_cast<size_t>(start), cut - static_cast<size_t>(start));
  if (frame.CallText.empty() || frame.CallText.back() != '\n') frame.CallText += '\n';
  DefineArgumentCount(as, frame.ArgumentCount);
  frame.Macro = &macro;
  frame.MacroBodyPosition = 0;
  // A positional call inside a named one runs its body by the positional
  // rules, with its own arguments.
  frame.RunningNamedMacro = named ? &macro : nullptr;
  as.Line.offset = scan.end;
  as.CommentOffset = scan.end;
  return true;
}

void EnterMacroBody(Assembler& as) {
  MacroState& state = as.Macros;
  MacroCallFrame& frame = state.Frames[static_cast<size_t>(state.Depth)];
  frame.SavedInMacroExpansion = as.InMacroExpansion;
  frame.SavedFromSourceFile = as.FromSourceFile;
  frame.SavedConditionalDepth = as.Conditional.Depth;
  frame.SavedControlConditionalDepth = as.Conditional.ControlDepth;
  as.Line.text.reserve(kMacroLineLimit + 2);  // room for rewrites in place
  ++state.Depth;
  as.InMacroExpansion = true;
  as.FromSourceFile = false;
}

void LeaveMacroBody(Assembler& as) {
  MacroState& state = as.Macros;
  --state.Depth;
  const MacroCallFrame& frame = state.Frames[static_cast<size_t>(state.Depth)];
  as.InMacroExpansion = frame.SavedInMacroExpansion;
  as.FromSourceFile = frame.SavedFromSourceFile;
  if (state.Unwinding) {
    // Blocks that the cut bodies left open are forgotten, as for INCLUDE.
    as.Conditional.Depth = frame.SavedConditionalDepth;
    as.Conditional.ControlDepth = frame.SavedControlConditionalDepth;
    if (state.Depth == 0) state.Unwinding = false;
  }
  DefineArgumentCount(as, RunningArgumentCount(as));
}

}  // namespace ta51
