// %*DEFINE: the header with the macro's name and parameters, the local
// names, and the body in parentheses, which may run over many lines. The
// lines are read through the line reader, so the C-style stage has acted on
// them once, here; a body is stored as plain text.
#include <cctype>
#include <memory>
#include <string>
#include <vector>

#include "core/diagnostics.h"
#include "core/line_source.h"
#include "core/statement.h"
#include "output/list_file.h"
#include "symbols/symbols.h"
#include "textlang/percent.h"

namespace ta51 {

namespace {

struct Definition {
  std::string name;
  std::vector<std::string> parameters;
  std::vector<std::string> locals;
  std::vector<std::string> body;
  bool wellFormed = true;
};

// Reads on through the lines of a definition. Each line counts for
// LineNumber as in the pass loop and, with MD, is listed as plain text; the
// closing line is left to the pass loop to list.
class DefinitionReader {
 public:
  explicit DefinitionReader(Assembler& as) : as_(as), listed_(as.opt.LIST && as.opt.MD) {}

  char Peek() const { return as_.Line.Peek(); }
  char Take() { return as_.Line.text[static_cast<size_t>(as_.Line.offset++)]; }
  bool AtLineEnd() const { return Peek() == '\n' || Peek() == '\0'; }
  void SkipBlanks() { ta51::SkipBlanks(as_); }

  // Leaves the current line for the next one; false at the end of the
  // input, which is reported.
  bool NextLine(const Definition& definition) {
    if (listed_) ListAsText();
    if (!FetchLine(as_)) {
      std::string detail = "the input ends inside the %*DEFINE";
      if (!definition.name.empty()) detail += " of " + definition.name;
      ReportError(as_, 5, true, detail);
      return false;
    }
    if (as_.FromSourceFile) ++as_.LineNumber;
    return true;
  }

  void ListAsText() {
    as_.CommentLine = true;
    as_.ShowLineValue = false;
    as_.CodeLength = 0;
    as_.LabelOffset = as_.OpcodeOffset = as_.OperandOffset = as_.CommentOffset = 0;
    ListLine(as_);
  }

 private:
  Assembler& as_;
  bool listed_;
};

bool IsName(const std::string& text) {
  if (text.empty()) return false;
  for (char c : text)
    if (!IsNameChar(c)) return false;
  return true;
}

// `(NAME)` or `(NAME(PARAM,PARAM))`, from behind the opening parenthesis.
// White space is dropped everywhere, and the header may run over lines.
bool ReadHeader(DefinitionReader& reader, Definition& definition) {
  enum class Part { kName, kParameters, kClose } part = Part::kName;
  std::string token;
  while (true) {
    if (reader.AtLineEnd()) {
      if (!reader.NextLine(definition)) return false;
      continue;
    }
    char c = reader.Take();
    if (IsWhiteSpace(c)) continue;
    if (part == Part::kName && (c == '(' || c == ')')) {
      definition.name.swap(token);
      token.clear();
      if (c == ')') break;
      part = Part::kParameters;
    } else if (part == Part::kParameters && (c == ',' || c == ')')) {
      if (c == ',' || !token.empty() || !definition.parameters.empty()) definition.parameters.push_back(token);
      token.clear();
      if (c == ')') part = Part::kClose;
    } else if (part == Part::kClose) {
      if (c == ')') break;
      definition.wellFormed = false;
    } else if (c == '(') {
      definition.wellFormed = false;
    } else {
      token += c;
    }
  }
  definition.wellFormed = definition.wellFormed && IsName(definition.name);
  for (const std::string& parameter : definition.parameters)
    definition.wellFormed = definition.wellFormed && IsName(parameter);
  return true;
}

bool LocalKeywordAt(const LineCursor& line) {
  static constexpr char kLocal[] = "LOCAL";
  for (int32_t i = 0; i < 5; ++i)
    if (std::toupper(static_cast<unsigned char>(line.At(line.offset + i))) != kLocal[i]) return false;
  return IsBlank(line.At(line.offset + 5));
}

// `LOCAL name name ...` behind the header, up to the `(` of the body or the
// end of the line.
void ReadLocals(Assembler& as, Definition& definition) {
  LineCursor& line = as.Line;
  SkipBlanks(as);
  if (!LocalKeywordAt(line)) return;
  line.offset += 5;
  while (true) {
    // Any white space separates the names (a form feed too), so that each
    // turn of the loop takes at least one character.
    while (line.Peek() != '\n' && IsWhiteSpace(line.Peek())) ++line.offset;
    char c = line.Peek();
    if (c == '(' || c == ';' || c == '\n' || c == '\0') return;
    int32_t start = line.offset;
    for (c = line.Peek(); c != '(' && c != ';' && c != '\0' && !IsWhiteSpace(c); c = line.Peek()) ++line.offset;
    definition.locals.emplace_back(line.text, static_cast<size_t>(start), static_cast<size_t>(line.offset - start));
    definition.wellFormed = definition.wellFormed && IsName(definition.locals.back());
  }
}

// The `(` that opens the body: on the header line, or as the first
// character of the next line that holds more than blanks or a comment.
bool FindBodyStart(Assembler& as, DefinitionReader& reader, const Definition& definition) {
  reader.SkipBlanks();
  if (reader.Peek() != '(' && reader.Peek() != ';' && !reader.AtLineEnd()) {
    ReportError(as, 58);
    return false;
  }
  while (reader.Peek() != '(') {
    if (!reader.NextLine(definition)) return false;
    reader.SkipBlanks();
    if (reader.AtLineEnd() || reader.Peek() == ';') continue;
    if (reader.Peek() != '(') {
      ReportError(as, 58);
      return false;
    }
  }
  reader.Take();
  return true;
}

// The body runs to the `)` that closes the opening one; parentheses count
// everywhere, in comments and strings too. Blanks in front of the first
// body line are dropped; the later lines stay as they are.
bool ReadBody(DefinitionReader& reader, Definition& definition) {
  while (true) {
    reader.SkipBlanks();
    if (!reader.AtLineEnd()) break;
    if (!reader.NextLine(definition)) return false;
  }
  std::string token;
  int32_t depth = 0;
  while (true) {
    if (reader.AtLineEnd()) {
      token += '\n';
      definition.body.push_back(std::move(token));
      token.clear();
      if (!reader.NextLine(definition)) return false;
      continue;
    }
    char c = reader.Take();
    if (c == ')' && depth == 0) break;
    if (c == '(') ++depth;
    if (c == ')') --depth;
    token += c;
  }
  definition.body.push_back(std::move(token));  // the last line, though empty
  return true;
}

bool SameDefinition(const PercentMacro& macro, const Definition& definition) {
  return macro.body == definition.body && macro.locals == definition.locals &&
         macro.parameters == definition.parameters;
}

void Store(Assembler& as, Definition& definition) {
  PercentMacroEngine& engine = as.Percent;
  if (as.SecondPass) {
    // The same definitions come in the same order as in the first pass.
    if (engine.Replayed < engine.Definitions.size() && engine.Definitions[engine.Replayed]->name == definition.name)
      engine.Macros[definition.name] = engine.Definitions[engine.Replayed++];
    return;
  }
  // A body that defines a macro, run many times, defines the same one.
  auto current = engine.Macros.find(definition.name);
  if (current != engine.Macros.end() && SameDefinition(*current->second, definition)) {
    engine.Definitions.push_back(current->second);
    return;
  }
  auto macro = std::make_unique<PercentMacro>();
  macro->name = definition.name;
  macro->body = std::move(definition.body);
  macro->locals = std::move(definition.locals);
  macro->parameters = std::move(definition.parameters);
  for (const std::string& local : macro->locals) macro->localForms.push_back("%" + local);
  for (const std::string& parameter : macro->parameters) macro->parameterForms.push_back("%" + parameter);
  engine.Macros[macro->name] = macro.get();
  engine.Definitions.push_back(macro.get());
  engine.Stored.push_back(std::move(macro));
}

}  // namespace

int DefinePercentMacro(Assembler& as) {
  if (as.Line.Peek() != '(') return ReportError(as, 58);
  if (as.LineHasLabel) ReportError(as, 56);
  as.LineHasLabel = false;  // the line will be another one
  DefinitionReader reader(as);
  Definition definition;
  reader.Take();
  if (!ReadHeader(reader, definition)) return 0;
  ReadLocals(as, definition);
  if (!definition.wellFormed) ReportError(as, 11, true, "a name in the header of %*DEFINE is no name");
  if (!FindBodyStart(as, reader, definition) || !ReadBody(reader, definition)) return 0;
  CheckOperandEnd(as);
  if (definition.wellFormed) Store(as, definition);
  // The closing line lists as plain text, as a MACRO definition's does.
  as.CommentLine = true;
  as.ShowLineValue = false;
  as.CodeLength = 0;
  as.ListThisLine = as.opt.MD.Value() != 0;
  as.LabelOffset = as.OpcodeOffset = as.OperandOffset = as.CommentOffset = 0;
  return kResultDone;
}

}  // namespace ta51
