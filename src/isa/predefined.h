// The names that an 8051 source uses without defining them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

struct PredefinedName {
  const char* name;
  int32_t type;
  int32_t value;
};

// A, R0..R7, AR0..AR7: the first nine give RegisterCode (position + 1).
extern const char* const kRegisterNames[17];
bool IsRegisterName(std::string_view name);
// The core registers, the core bits and the 8052 additions, for tools that
// list the words of the language.
extern const std::span<const PredefinedName> kPredefinedTables[3];

// Enters the core tables (unless additionsOnly) and, in 8052 mode, the
// additions, in upper or lower case.
void EnterPredefinedSymbols(Assembler& as, bool additionsOnly, bool lowerCase);
// Both halves, as the start of a run and the 8052 control do.
void EnterAllPredefinedSymbols(Assembler& as, bool additionsOnly);
// AR0..AR7 for one register bank.
void EnterBankRegisters(Assembler& as, int bank);
// RegisterCode of `A` or `R0`..`R7` followed by a delimiter, cursor moved; else -1.
int RegisterOperand(Assembler& as, std::string_view delimiters);

}  // namespace ta51
