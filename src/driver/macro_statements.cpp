// The statements of the MACRO language that read lines or run a nested pass:
// a definition, read and stored in the first pass and walked over in the
// second, and a call, which streams the stored body through the line reader.
#include <cctype>
#include <string>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "core/keyword_tables.h"
#include "driver/line_reader.h"
#include "core/option_keywords.h"
#include "driver/pass.h"
#include "isa/encoder.h"
#include "output/list_file.h"
#include "symbols/symbols.h"
#include "textlang/macro.h"
#include "textlang/percent.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

constexpr size_t kMacroNameLimit = 255;
constexpr std::string_view kMacroWords[] = {"MACR", "MACRO", ".MACRO", "EQU", "SET"};

// No mnemonic, directive, option keyword, IF keyword, reserved name or
// statement word may name a macro: a call of it could never be reached.
bool IsFreeMacroName(std::string_view name) {
  std::string word(name);
  for (char& c : word) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  for (const Mnemonic& mnemonic : kMnemonics)
    if (word == mnemonic.word) return false;
  for (const KeywordTable* table : {&kGeneralDirectives, &kDataDirectives, &kIfKeywords, &kEndKeywords})
    if (FindKeyword(*table, word) != nullptr) return false;
  for (std::string_view reserved : kMacroWords)
    if (word == reserved) return false;
  return FindOption(word) == kNoOption && IsFreeLabelName(word);
}

// The lines of a definition list as plain text, with MD.
void ListDefinitionLine(Assembler& as) {
  as.CommentLine = true;
  as.CodeLength = 0;
  as.ShowLineValue = false;
  as.CommentOffset = 0;
  if (as.opt.LIST && as.opt.MD) ListLine(as);
}

// The walk over a definition: the second pass's, and the first pass's after
// a refused name. Lists the definition under MD; the closing line goes back
// to the pass loop, which lists it as a comment line.
void SkipMacroDefinition(Assembler& as, const char* terminator) {
  ListDefinitionLine(as);
  while (true) {
    if (!FetchCountedLine(as)) {
      ReportError(as, 43);
      return;
    }
    as.LabelOffset = as.OpcodeOffset = as.OperandOffset = as.CommentOffset = 0;
    bool done = ClosesDefinition(as, terminator);
    as.CommentLine = true;
    if (done) break;
    if (as.opt.LIST && as.opt.MD) ListLine(as);
  }
  as.ListThisLine = as.opt.MD.Value() != 0;
}

// Reads the body up to its terminator. The terminator stays the current
// line, marked to list as plain text as in the second pass. A first pass
// that is listed (LISTF) shows the definition as the second pass does.
void ReadMacroBody(Assembler& as, SymbolEntry& macro, const char* terminator) {
  ListDefinitionLine(as);
  while (true) {
    if (!FetchCountedLine(as)) {
      ReportError(as, 43);
      return;
    }
    const std::string& text = as.Line.text;
    // Debug line marks of a generated source are not part of the body, nor
    // do they count as lines.
    if (text.compare(0, 8, "\t__SLINE") == 0 || text.compare(0, 8, "\t__SFILE") == 0) {
      if (as.FromSourceFile) --as.LineNumber;
      continue;
    }
    as.LabelOffset = as.OpcodeOffset = as.OperandOffset = 0;
    const DefinitionLine line = TakeDefinitionLine(as, macro, terminator);
    if (line != DefinitionLine::Closes) ListDefinitionLine(as);
    switch (line) {
      case DefinitionLine::Stored: break;
      case DefinitionLine::Nests: ReportError(as, 44); return;
      case DefinitionLine::Closes:
        as.CommentLine = true;
        as.ShowLineValue = false;
        as.ListThisLine = as.opt.MD.Value() != 0;
        as.LabelOffset = as.OpcodeOffset = as.OperandOffset = as.CommentOffset = 0;
        return;
    }
  }
}

// MACRO (positional) or .MACRO (named), first pass.
void DefineMacro(Assembler& as, bool named) {
  const char* terminator = named ? ".ENDM" : "ENDM";
  int32_t nameOffset = as.LineHasLabel ? as.LabelOffset : as.Line.offset;
  if (!ReadName(as, as.Line.Pointer(nameOffset))) {
    if (!as.LineHasError) ReportError(as, 27);  // `.MACRO` with no name
    return;
  }
  std::string name = as.NameBuffer;
  int32_t behindName = nameOffset + static_cast<int32_t>(name.size());
  if (!IsFreeMacroName(name)) {
    as.Line.offset = behindName;
    ReportError(as, 53);
    SkipMacroDefinition(as, terminator);
    return;
  }
  std::vector<std::string> parameters;
  if (named) {
    int32_t listStart = as.LineHasLabel ? as.Line.offset : behindName;
    parameters = ReadParameterList(as.Line.text, static_cast<size_t>(listStart));
  } else {
    char c = as.Line.Peek();
    as.Macros.KeepMacroComments = (c == 'C' || c == 'c') && IsWhiteSpace(as.Line.At(as.Line.offset + 1));
  }
  if (FindSymbol(as, name) != nullptr) {
    ReportError(as, 13);
    SkipMacroDefinition(as, terminator);
    return;
  }
  if (name.size() > kMacroNameLimit) {
    ReportError(as, 12);
    return;
  }
  SymbolEntry entry;
  entry.type = named ? T_NAMEDMACRO : T_MACRO;
  SymbolEntry* macro = as.Symbols.Insert(name, entry, as.opt.NOCASE.Value() != 0);
  as.Symbols.ExtraOf(*macro).parameters = std::move(parameters);
  ReadMacroBody(as, *macro, terminator);
}

const SymbolEntry* CalledMacro(Assembler& as) {
  if (!ReadName(as, as.Line.Pointer(as.OpcodeOffset))) return nullptr;
  const SymbolEntry* macro = FindSymbol(as, as.NameBuffer);
  if (macro == nullptr || (macro->type != T_MACRO && macro->type != T_NAMEDMACRO)) return nullptr;
  return macro;
}

}  // namespace

int MacroStatement(Assembler& as, int result) {
  const bool named = result == kResultDotMacro;
  if (as.SecondPass) {
    SkipMacroDefinition(as, named ? ".ENDM" : "ENDM");
    as.CommentLine = true;
  } else {
    DefineMacro(as, named);
  }
  return kResultDone;
}

int MacroCall(Assembler& as, int result) {
  const SymbolEntry* macro = CalledMacro(as);
  if (macro == nullptr || as.LineHasError) return 0;
  if (!BeginMacroCall(as, *macro, result == kResultNamedMacroCall)) return 0;
  if (as.opt.LIST && as.opt.MC) {
    as.ShowLineValue = false;
    ListLine(as);
  }
  PercentFloorGuard percentFloor(as);
  EnterMacroBody(as);
  AssemblePass(as);
  LeaveMacroBody(as);
  return kResultListed;
}

}  // namespace ta51
