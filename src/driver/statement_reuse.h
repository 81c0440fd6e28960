// The second pass takes from the first the instructions that nothing in the
// rest of the source could change, instead of reading them again.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// First pass, before a statement is read: counts it and starts to watch it.
void WatchStatement(Assembler& as);
// First pass, after the statement: keeps it when its bytes are final.
void KeepStatement(Assembler& as, int result);
// Second pass, before a statement is read: counts it; true when it was kept
// by the first pass and its bytes and cursor are restored.
bool ReuseStatement(Assembler& as);
// Second pass, after a statement, when records are only checked: aborts the
// run if the statement's record differs from what was read.
void CheckReusedStatement(Assembler& as, int result);

}  // namespace ta51
