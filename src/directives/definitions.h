// Directives that give names a type and a value without generating code:
// BIT, DATA, XDATA, IDATA, CODE, PUBLIC, EXTRN, USING and $REGISTERBANK.
#pragma once

#include <cstdint>

#include "core/assembler.h"

namespace ta51 {

// DATA, XDATA, IDATA or CODE, with the symbol type it gives.
int AddressDirective(Assembler& as, int32_t type);
int BitDirective(Assembler& as);
int PublicDirective(Assembler& as);
int ExternDirective(Assembler& as);
int UsingDirective(Assembler& as);
int RegisterBankControl(Assembler& as);

}  // namespace ta51
