// Delivers logical source lines and runs INCLUDE.
#pragma once

#include "core/assembler.h"
#include "core/line_source.h"

namespace ta51 {

// INCLUDE and $INCLUDE; the statement result.
int ProcessInclude(Assembler& as);
// Stops the run when the list or object file is `input` under another name:
// it would be written over while it is read.
void RefuseOutputOverInput(Assembler& as, const InputFile& input);

}  // namespace ta51
