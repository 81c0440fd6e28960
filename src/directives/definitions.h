// Directives that give names a type and a value without generating code:
// BIT, DATA, XDATA, IDATA, CODE, PUBLIC, EXTRN, USING and $REGISTERBANK.
#pragma once

#include <cstdint>
#include <span>

#include "core/assembler.h"

namespace ta51 {

struct ExternType {
  const char* keyword;
  int32_t type;
};
// The types EXTRN takes, for tools that list the words of the language.
std::span<const ExternType> ExternTypes();

// DATA, XDATA, IDATA or CODE, with the symbol type it gives.
int AddressDirective(Assembler& as, int32_t type);
int BitDirective(Assembler& as);
int PublicDirective(Assembler& as);
int ExternDirective(Assembler& as);
int UsingDirective(Assembler& as);
int RegisterBankControl(Assembler& as);

}  // namespace ta51
