// The reader of logical source lines. The driver provides it; the statements
// that read lines of their own (skip scanners, definition readers) use it.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// The next logical line into as.Line, or false at the end of the input.
bool FetchLine(Assembler& as);

}  // namespace ta51
