// The list file: listed lines, page headers and the symbol table.
#pragma once

#include "driver/assembler.h"

namespace ta51 {

void ListLine(Assembler& as);
void NewPage(Assembler& as);
void ListBlankLine(Assembler& as);
void ListSymbolTable(Assembler& as);

}  // namespace ta51
