// The line loop of a pass and the classification of a statement.
#pragma once

#include "core/assembler.h"
#include "core/statement.h"

namespace ta51 {

// The whole assembly of the settled source; true when it succeeded. A run
// that must stop early unwinds through Terminate instead.
bool AssembleFile(Assembler& as);
void ResetPassState(Assembler& as);
void AssemblePass(Assembler& as);
int ProcessStatement(Assembler& as);

}  // namespace ta51
