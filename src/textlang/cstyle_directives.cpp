// The C-style directives: reading a directive line, the #define table, the
// block state of #if and its kin, and the stage that the line reader runs on
// each line of a file.
#include <string>
#include <string_view>
#include <vector>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "textlang/cconst_expr.h"
#include "textlang/cstyle.h"
#include "textlang/cstyle_words.h"

namespace ta51 {

namespace {

// What a directive line holds, read by its directive's form.
struct ParsedDirective {
  int code = 0;
  std::string name;  // the name of #define, #undef, #ifdef, #ifndef; empty if none
  std::vector<std::string> parameters;
  std::string parameterError;  // set when the parameter list is malformed
  std::string raw;             // the raw operand, without its line end
  bool commentOpen = false;    // a /* of the operand did not close
};

bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' || c == '_'; }
bool IsNameChar(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '$' || c == '@' || c == '~';
}

// The tokens of a directive line: names, numbers, strings and punctuators.
// A name is read as the expander reads a word, so that every name a
// #define makes can be found in a line.
class DirectiveScanner {
 public:
  explicit DirectiveScanner(std::string_view text) : text_(text) {}

  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  size_t Position() const { return at_; }
  void SkipWhiteSpace() {
    while (at_ < text_.size() && IsWhiteSpace(text_[at_])) ++at_;
  }

  // The next name at the read position after white space, or empty.
  std::string_view Name() {
    SkipWhiteSpace();
    size_t start = at_;
    if (!IsNameStart(Peek())) return {};
    while (at_ < text_.size() && IsNameChar(text_[at_])) ++at_;
    return text_.substr(start, at_ - start);
  }
  // Takes `c` after white space.
  bool Take(char c) {
    SkipWhiteSpace();
    if (Peek() != c) return false;
    ++at_;
    return true;
  }
  // The raw operand: to the line end, `//` or `;`. A /* */ comment counts as
  // one blank; one that does not close ends the text. Quoted text is taken
  // whole: `"` to `"`, and `'` as ta51 reads a character constant, its first
  // character as it stands and a doubled quote for a quote. Trailing white
  // space is cut.
  std::string RawOperand(bool& commentOpen) {
    SkipWhiteSpace();
    std::string raw;
    while (at_ < text_.size()) {
      char c = text_[at_];
      if (c == '\n' || c == ';' || (c == '/' && Next() == '/')) break;
      if (c == '/' && Next() == '*') {
        size_t close = text_.find("*/", at_ + 2);
        if (close == std::string_view::npos || text_.find('\n', at_) < close) {
          commentOpen = true;
          break;
        }
        raw += ' ';
        at_ = close + 2;
        continue;
      }
      raw += c;
      ++at_;
      if (c == '"' || c == '\'') TakeQuoted(c, raw);
    }
    while (!raw.empty() && IsWhiteSpace(raw.back())) raw.pop_back();
    return raw;
  }

 private:
  char Next() const { return at_ + 1 < text_.size() ? text_[at_ + 1] : '\0'; }
  bool AtLineEnd() const { return at_ >= text_.size() || text_[at_] == '\n'; }

  void TakeQuoted(char quote, std::string& raw) {
    if (quote == '\'' && !AtLineEnd()) raw += text_[at_++];
    while (!AtLineEnd()) {
      char c = text_[at_++];
      raw += c;
      if (c != quote) continue;
      if (quote == '"' || AtLineEnd() || text_[at_] != quote) return;
      raw += text_[at_++];
    }
  }

  std::string_view text_;
  size_t at_ = 0;
};

// `(a, b)` right behind the name of a #define. An empty list is no list:
// `#define F() x` has no parameters, and `F()` in a line gives `x()`.
void ReadParameterList(DirectiveScanner& scanner, ParsedDirective& d) {
  scanner.Take('(');
  if (scanner.Take(')')) return;
  while (true) {
    std::string_view parameter = scanner.Name();
    if (parameter.empty()) {
      d.parameterError = "parameter list of " + d.name;
      return;
    }
    for (const std::string& earlier : d.parameters)
      if (earlier == parameter) {
        d.parameterError = "parameter " + earlier + " named twice in " + d.name;
        return;
      }
    d.parameters.emplace_back(parameter);
    if (scanner.Take(')')) return;
    if (!scanner.Take(',')) {
      d.parameterError = "parameter list of " + d.name;
      return;
    }
  }
}

// Reads a directive line. Without `forcedWord` the line must hold `#` and a
// directive word, blanks allowed before and between them; with it, the line
// holds the operands only. False if the line is no directive.
bool ParseDirective(std::string_view line, std::string_view forcedWord, ParsedDirective& d) {
  DirectiveScanner scanner(line);
  if (forcedWord.empty()) {
    if (!scanner.Take('#')) return false;
    d.code = FindCStyleDirective(scanner.Name());
  } else {
    d.code = FindCStyleDirective(forcedWord);
  }
  switch (d.code) {
    case 0: return false;
    case kCDefine:
      d.name = scanner.Name();
      if (!d.name.empty() && scanner.Peek() == '(') ReadParameterList(scanner, d);
      d.raw = scanner.RawOperand(d.commentOpen);
      break;
    case kCUndef: case kCIfdef: case kCIfndef:
      d.name = scanner.Name();
      break;
    case kCInclude: case kCIf: case kCElif:
      d.raw = scanner.RawOperand(d.commentOpen);
      break;
    default: break;
  }
  return true;
}

// The line of a directive fails: the report shows it from its start. A
// definition of the command line has no line number.
void Complain(Assembler& as, int number, std::string_view detail, bool withLine = true) {
  as.Line.offset = 0;
  ReportError(as, number, withLine, detail);
}

void RebuildNameFilter(CStyleProcessor& c) {
  c.NameFilter.fill(0);
  for (const auto& entry : c.Macros) c.MarkDefined(NameHash(entry.first));
}

void DefineCMacro(Assembler& as, ParsedDirective& d, bool fromSource = true) {
  if (d.name.empty()) return Complain(as, 11, "#define needs a name", fromSource);
  if (!d.parameterError.empty()) return Complain(as, 11, d.parameterError, fromSource);
  CStyleProcessor& c = as.CStyle;
  CMacro& macro = c.Macros[d.name];
  macro.Name = d.name;
  macro.Parameters = std::move(d.parameters);
  macro.Body = std::move(d.raw);
  c.MarkDefined(NameHash(d.name));
}

void UndefineCMacro(Assembler& as, const ParsedDirective& d) {
  if (d.name.empty()) return Complain(as, 11, "#undef needs a name");
  CStyleProcessor& c = as.CStyle;
  if (c.Macros.erase(d.name) != 0) RebuildNameFilter(c);
}

// Whether the condition of #if, #ifdef, #ifndef or #elif holds.
bool ConditionHolds(Assembler& as, const ParsedDirective& d) {
  if (d.code == kCIf || d.code == kCElif) {
    CConstExpr expression(as);
    return expression.Evaluate(d.raw, d.code == kCIf ? "#if" : "#elif") != 0;
  }
  if (d.name.empty()) {
    Complain(as, 11, d.code == kCIfdef ? "#ifdef needs a name" : "#ifndef needs a name");
    return d.code == kCIfndef;  // the name counts as undefined
  }
  bool defined = FindCMacro(as, d.name) != nullptr;
  return d.code == kCIfdef ? defined : !defined;
}

// #if, #ifdef and #ifndef outside a dropped section.
void OpenBlock(Assembler& as, bool holds) {
  CStyleProcessor& c = as.CStyle;
  if (c.DirectiveState == 0) {
    c.OpenedAtLine = as.LineNumber;
    c.OpenedInFile = as.CurrentFileName;
    c.OpenedText = as.Line.text;
  }
  if (holds) {
    c.DirectiveState = 1;
    ++c.ActiveDepth;
  } else {
    c.DirectiveState = 2;
    c.SkipDepth = 0;
  }
}

// A dropped section ends at the #endif of its block; what it returns to
// depends on the assembled blocks around it.
void CloseDroppedBlock(CStyleProcessor& c) {
  if (c.SkipDepth > 0) {
    --c.SkipDepth;
    return;
  }
  if (c.DirectiveState == 3) --c.ActiveDepth;
  c.DirectiveState = c.ActiveDepth > 0 ? 1 : 0;
}

void ElseOrElif(Assembler& as, const ParsedDirective& d) {
  CStyleProcessor& c = as.CStyle;
  switch (c.DirectiveState) {
    case 0: return Complain(as, d.code == kCElse ? 38 : 37, {});
    case 1:
      c.DirectiveState = 3;
      c.SkipDepth = 0;
      return;
    case 2:
      if (c.SkipDepth == 0 && (d.code == kCElse || ConditionHolds(as, d))) {
        c.DirectiveState = 1;
        ++c.ActiveDepth;
      }
      return;
    default: return;  // behind an assembled section nothing more is assembled
  }
}

void Endif(Assembler& as) {
  CStyleProcessor& c = as.CStyle;
  switch (c.DirectiveState) {
    case 0: return Complain(as, 36, {});
    case 1:
      if (--c.ActiveDepth == 0) c.DirectiveState = 0;
      return;
    default: return CloseDroppedBlock(c);
  }
}

// An active #include becomes an INCLUDE statement, expanded like any line.
// INCLUDE of the .a51 dialect reads `(name)`, so a bare name gets quotes
// there and reads as in the other dialect.
bool RewriteInclude(Assembler& as, const ParsedDirective& d) {
  std::string& text = as.Line.text;
  text = d.raw.empty() ? " include\n" : " include " + d.raw + "\n";
  if (!ExpandCMacros(as, text, false)) return false;
  size_t name = text.find_first_not_of(" \t", 8);
  if (as.PercentDialect && name != std::string::npos && text[name] != '"' && text[name] != '<' && text[name] != '\n') {
    size_t end = text.find_first_of(" \t\n", name);
    text.insert(end, 1, '"');
    text.insert(name, 1, '"');
  }
  return true;
}

// The lines of a block may differ between the passes, as the table stands
// through both: a guard that the first pass enters is closed in the second.
// Code or data that this leaves out would move what follows it, so an
// #endif that closes the outermost block must stand where the first pass
// met it. (Inside, the passes may take other branches of the same size.)
void CheckOutermostEndif(Assembler& as) {
  const SegmentEntry* segment = as.CurrentSegment;
  std::string place = as.CurrentFileName + '(' + std::to_string(as.LineNumber) + ") " +
                      std::to_string(segment == nullptr ? -1 : segment->number) + ':' +
                      std::to_string(segment == nullptr ? 0 : segment->location);
  std::unordered_set<std::string>& places = as.CStyle.FirstPassPlaces;
  if (!as.SecondPass) {
    places.insert(std::move(place));
    return;
  }
  if (places.count(place) == 0) Complain(as, 17, "code before this #endif differs from the first pass");
}

// Carries out a directive; true only for a delivered #include.
bool CarryOut(Assembler& as, ParsedDirective& d) {
  CStyleProcessor& c = as.CStyle;
  bool dropped = c.DirectiveState >= 2;
  switch (d.code) {
    case kCDefine:
      if (!dropped) DefineCMacro(as, d);
      return false;
    case kCUndef:
      if (!dropped) UndefineCMacro(as, d);
      return false;
    case kCInclude: return !dropped && RewriteInclude(as, d);
    case kCIf: case kCIfdef: case kCIfndef:
      if (dropped)
        ++c.SkipDepth;
      else
        OpenBlock(as, ConditionHolds(as, d));
      return false;
    case kCElse: case kCElif: ElseOrElif(as, d); return false;
    case kCEndif: {
      bool open = c.DirectiveState != 0;
      Endif(as);
      if (open && c.DirectiveState == 0) CheckOutermostEndif(as);
      return false;
    }
    default: return false;
  }
}

bool Stage(Assembler& as, bool& inComment) {
  CStyleProcessor& c = as.CStyle;
  std::string& text = as.Line.text;
  size_t first = 0;
  while (first < text.size() && IsBlank(text[first])) ++first;
  char lead = first < text.size() ? text[first] : '\0';
  ParsedDirective d;
  if (lead == '#' && ParseDirective(text, {}, d)) {
    bool delivered = CarryOut(as, d);
    if (d.commentOpen) (delivered ? c.CommentOpen : inComment) = true;
    return delivered;
  }
  if (c.DirectiveState >= 2) return false;
  if (lead == ';') return true;
  return ExpandCMacros(as, text, false);
}

}  // namespace

bool RunCStyleStage(Assembler& as, bool& inComment) {
  if (!as.CStyle.Running) return true;
  // A line that fails here is not delivered: its error must not mark the
  // line that the caller gets next.
  bool hadError = as.LineHasError;
  bool delivered = Stage(as, inComment);
  if (!delivered) as.LineHasError = hadError;
  return delivered;
}

void StartCStylePass(Assembler& as) {
  CStyleProcessor& c = as.CStyle;
  c.Running = true;
  c.PassCharacters = 0;
  if (as.SecondPass) return;
  for (const auto& [name, body] : as.CommandLineDefines) {
    ParsedDirective d;
    ParseDirective(name + " " + body + "\n", "define", d);
    as.Line.text = "/D" + name + (body.empty() ? "" : "=" + body) + "\n";
    DefineCMacro(as, d, false);
  }
}

void FinishCStylePass(Assembler& as) {
  const CStyleProcessor& c = as.CStyle;
  if (as.EndSeen || c.DirectiveState == 0) return;
  std::string detail = "Missing #endif for the #if of line " + std::to_string(c.OpenedAtLine);
  if (c.OpenedInFile != as.CurrentFileName) detail += " of " + c.OpenedInFile;
  as.Line.text = c.OpenedText;
  as.Line.offset = 0;
  ReportError(as, 1, true, detail);
}

}  // namespace ta51
