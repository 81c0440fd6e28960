#include "symbols/symbols.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "core/diagnostics.h"
#include "symbols/expression.h"

namespace ta51 {

namespace {

constexpr std::array<std::string_view, 25> kReservedNames = {
    "NARG", "R1",  "R2", "R3", "R4", "R5", "R6", "R7", "A",  "DPTR", "HIGH", "LOW", "MOD",
    "SHL",  "SHR", "EQ", "NE", "LT", "LE", "GT", "GE", "NOT", "AND", "OR",   "XOR",
};

constexpr size_t kLongestReservedName = 4;
static_assert(std::all_of(kReservedNames.begin(), kReservedNames.end(),
                          [](std::string_view name) { return name.size() <= kLongestReservedName; }));

bool IsWordEnd(char c) { return c == ' ' || c == '\t' || c == '\n' || c == ',' || c == ')'; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool NoCase(const Assembler& as) { return as.opt.NOCASE.Value() != 0; }
bool PredefinedVisible(const Assembler& as) { return as.opt.PredefinedSymbolsEnabled.Value() != 0; }

void ApplyDefinition(Assembler& as, SymbolEntry& entry, const SymbolDefinition& d) {
  entry.value = d.value;
  entry.type = static_cast<int8_t>(d.type);
  entry.segment = d.segment;
  entry.itemCount = d.itemCount;
  entry.itemSize = d.itemSize;
  as.Symbols.SetExpression(entry, d.expression);
}

void SetTextFlag(Assembler& as, SymbolEntry& entry) {
  if (as.ItemIsText)
    entry.flags |= kSymText;
  else
    entry.flags &= static_cast<uint8_t>(~kSymText);
}

}  // namespace


int ReadName(Assembler& as, const char* text, bool allowDigit) {
  as.NameBuffer.clear();
  char first = text[0];
  if (!(allowDigit && IsDigit(first))) {
    if (!IsNameStart(first)) return 0;
    if ((first == '.' || first == '_') && !IsNameChar(text[1])) return 0;
  }
  size_t length = 1;
  while (IsNameChar(text[length])) ++length;
  if (length > kMaxNameLength) {
    ReportError(as, 12);
    as.NameBuffer.clear();
    return 0;
  }
  as.NameBuffer.assign(text, length);
  return 1;
}

void SkipName(Assembler& as) {
  LineCursor& line = as.Line;
  ++line.offset;  // the first character is taken as given
  while (IsNameChar(line.Peek())) ++line.offset;
  if (line.Peek() == ':') ++line.offset;
  ++line.offset;
}

int SkipSymbolName(Assembler& as) {
  LineCursor& line = as.Line;
  ++line.offset;
  while (IsNameChar(line.Peek())) ++line.offset;
  return ScanToken(as, true);
}

SymbolEntry* FindSymbol(Assembler& as, std::string_view name) {
  return as.Symbols.Find(name, NoCase(as), PredefinedVisible(as));
}

int LookupSymbol(Assembler& as, const char* text, bool allowDigit) {
  as.FoundSymbol = nullptr;
  int found = ReadName(as, text, allowDigit);
  if (as.LineHasError) return 0;
  if (!found) {
    ReportError(as, 11);
    return 0;
  }
  as.FoundSymbol = FindSymbol(as, as.NameBuffer);
  return as.FoundSymbol != nullptr ? as.FoundSymbol->type : 0;
}

void DefineSymbol(Assembler& as, const char* name, const SymbolDefinition& d) {
  if (d.checkReserved && !IsFreeLabelName(name)) {
    ReportError(as, 54);
    return;
  }
  LookupSymbol(as, name, d.allowDigit);
  if (as.LineHasError) return;
  if (d.type == T_REGEQU || d.type == T_REGSET) as.Symbols.NoteRegisterAlias();
  SymbolEntry* found = as.FoundSymbol;
  if (found == nullptr) {
    SymbolEntry entry;
    entry.value = d.value;
    entry.type = static_cast<int8_t>(d.type);
    entry.segment = d.segment;
    entry.itemCount = d.itemCount;
    entry.itemSize = d.itemSize;
    entry.relocation = static_cast<int8_t>(d.relocation);
    entry.flags = static_cast<uint8_t>((d.settable ? kSymSettable : 0) | (d.predefined ? kSymPredefined : 0) |
                                       (as.ItemIsText ? kSymText : 0) | (d.flag4 ? kSymFlag4 : 0) |
                                       (d.flag5 ? kSymFlag5 : 0));
    as.FoundSymbol = as.Symbols.Insert(as.NameBuffer, entry, NoCase(as));
    as.Symbols.SetExpression(*as.FoundSymbol, d.expression);
    return;
  }
  if (d.settable) {
    if ((found->flags & kSymSettable) || found->type == T_DECLARED) {
      found->type = static_cast<int8_t>(d.type);
      found->value = d.value;
      found->segment = d.segment;
      found->flags |= kSymSettable;
      found->itemCount = d.itemCount;
      found->itemSize = d.itemSize;
      as.Symbols.SetExpression(*found, d.expression);
    } else {
      ReportError(as, 13);
    }
    return;
  }
  if (found->type == T_MACROVALUE || found->type == T_REGSET) {
    found->value = d.value;
    as.Symbols.SetExpression(*found, {});
    return;
  }
  if (found->type == T_DECLARED) {
    switch (d.type) {
      case T_CODE: case T_DATA: case T_XDATA: case T_IDATA: case T_BIT: case T_NUMBER:
        break;
      default:
        ReportError(as, 72);
        break;
    }
    ApplyDefinition(as, *found, d);
    SetTextFlag(as, *found);
    return;
  }
  if (found->relocation == REL_XDREF) {
    if (found->type != T_NUMBER && found->type != d.type) ReportError(as, 3);
    ApplyDefinition(as, *found, d);
    found->relocation = REL_XDEF;
    return;
  }
  ReportError(as, 13);
}

void MarkPublic(Assembler& as, int flag4, int flag5) {
  SymbolEntry* symbol = as.FoundSymbol;
  if (symbol == nullptr) return;
  symbol->relocation = symbol->relocation == REL_XREF ? REL_XDREF : REL_XDEF;
  if (flag4) symbol->flags = static_cast<uint8_t>((symbol->flags & ~kSymFlag4) | (flag4 & 1 ? kSymFlag4 : 0));
  if (flag5) symbol->flags = static_cast<uint8_t>((symbol->flags & ~kSymFlag5) | (flag5 & 1 ? kSymFlag5 : 0));
}

std::span<const std::string_view> ReservedNames() { return kReservedNames; }

int IsFreeLabelName(std::string_view text) {
  // The word runs to a blank, a comma, a parenthesis or the end; one longer
  // than every reserved name is free without comparing.
  size_t length = 0;
  while (length < text.size() && length <= kLongestReservedName && !IsWordEnd(text[length])) ++length;
  if (length > kLongestReservedName) return 1;
  const std::string_view word = text.substr(0, length);
  for (std::string_view reserved : kReservedNames) {
    if (reserved.size() != word.size()) continue;
    size_t i = 0;
    while (i < word.size() && std::toupper(static_cast<unsigned char>(word[i])) == reserved[i]) ++i;
    if (i == word.size()) return 0;
  }
  return 1;
}

int IsFreeLabelName(const char* text) {
  size_t length = 0;
  while (length <= kLongestReservedName && text[length] != '\0') ++length;
  return IsFreeLabelName(std::string_view(text, length));
}

int MatchRegisterSymbol(Assembler& as, int low, int high) {
  const char* here = as.Line.Here();
  if (!IsNameStart(*here)) return 0;
  if (!as.Symbols.HasRegisterAliases()) {
    // Nothing to find; a name too long is still reported by ReadName.
    size_t length = 1;
    while (IsNameChar(here[length])) ++length;
    if (length <= kMaxNameLength) return 0;
  }
  if (!ReadName(as, here)) return 0;
  SymbolEntry* symbol = FindSymbol(as, as.NameBuffer);
  if (symbol == nullptr || (symbol->type != T_REGEQU && symbol->type != T_REGSET)) return 0;
  if (symbol->type == T_REGSET) as.Reuse.Decline();  // it may name another register later
  if (symbol->value < low || symbol->value > high) return 0;
  as.Line.offset += static_cast<int32_t>(as.NameBuffer.size());
  return symbol->value;
}

void OpenFileScope(Assembler& as) {
  if (!as.SecondPass) {
    as.Symbols.SetCurrentFileScope(as.Symbols.NewFileScope());
    return;
  }
  SymbolTable::ScopeId recorded = as.Symbols.NextRecordedScope();
  if (recorded == SymbolTable::kNoScope) {
    ReportError(as, 17);
    return;
  }
  as.Symbols.SetCurrentFileScope(recorded);
}

// Scopes are separate chains already, so closing records nothing more.
void CloseFileScope(Assembler&) {}

void RewindFileScopes(Assembler& as) { as.Symbols.RewindFileScopes(); }

}  // namespace ta51
