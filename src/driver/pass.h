// The line loop of a pass and the classification of a statement.
#pragma once

#include "core/assembler.h"
#include "core/statement.h"

namespace ta51 {

void AssembleFile(Assembler& as);
void ResetPassState(Assembler& as);
void AssemblePass(Assembler& as);
int ProcessStatement(Assembler& as);

}  // namespace ta51
