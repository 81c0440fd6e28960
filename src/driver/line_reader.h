// Delivers logical source lines and runs INCLUDE.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// The next logical line into as.Line, or false at the end of the input.
bool FetchLine(Assembler& as);
// INCLUDE and $INCLUDE; the statement result.
int ProcessInclude(Assembler& as);

}  // namespace ta51
