// Names in source text and the operations of the symbol table that report
// through the run: reading names, looking them up and defining them.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "core/assembler.h"
#include "symbols/expression_text.h"

namespace ta51 {

// Reads the name at `text` into NameBuffer; 1, or 0 if no name stands there.
int ReadName(Assembler& as, const char* text, bool allowDigit = false);
// Moves the read offset past a name and one colon behind it.
void SkipName(Assembler& as);
// Moves past the name characters and returns the next token (ScanToken).
int SkipSymbolName(Assembler& as);

// Looks the name at `text` up; its type, or 0. Leaves FoundSymbol.
int LookupSymbol(Assembler& as, const char* text, bool allowDigit = false);
// Looks up a name already in hand, without reading or reporting.
SymbolEntry* FindSymbol(Assembler& as, std::string_view name);

struct SymbolDefinition {
  int32_t value = 0;
  int32_t type = T_NUMBER;
  bool checkReserved = true;
  int32_t relocation = REL_NULL;
  bool settable = false;
  SegmentEntry* segment = nullptr;
  bool predefined = false;
  uint32_t itemCount = 1;
  uint32_t itemSize = 1;
  std::string_view expression;
  bool allowDigit = false;
  int flag4 = 0;
  int flag5 = 0;
};
// Defines the name at `name` (it ends at the first character no name holds).
void DefineSymbol(Assembler& as, const char* name, const SymbolDefinition& definition);

void MarkPublic(Assembler& as, int flag4, int flag5);
// 1 if the first word of `text` is no reserved name.
int IsFreeLabelName(std::string_view text);
int IsFreeLabelName(const char* text);  // the word at a zero-ended text
// The names no label may take, for tools that list the words of the language.
std::span<const std::string_view> ReservedNames();
// A register alias at the read offset with a code in [low, high]: its code,
// with the offset moved past the name; otherwise 0.
int MatchRegisterSymbol(Assembler& as, int low, int high);

void OpenFileScope(Assembler& as);
void CloseFileScope(Assembler& as);
void RewindFileScopes(Assembler& as);

}  // namespace ta51
