// Delivers logical source lines and runs INCLUDE.
#pragma once

#include "core/assembler.h"
#include "core/line_source.h"

namespace ta51 {

// INCLUDE and $INCLUDE; the statement result.
int ProcessInclude(Assembler& as);

}  // namespace ta51
