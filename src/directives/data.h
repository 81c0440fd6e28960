// Data and storage directives.
#pragma once

#include <cstdint>

#include "core/assembler.h"

namespace ta51 {

// Stores one element of ItemSize bytes, high byte first, and writes it in the
// second pass; returns LineHasError.
bool StoreDataElement(Assembler& as, int32_t value);

int DbDirective(Assembler& as);
int DwDirective(Assembler& as);
int DsDirective(Assembler& as);
int DbitDirective(Assembler& as);
int EvenDirective(Assembler& as);
int AlignDirective(Assembler& as);

}  // namespace ta51
