// The second pass takes from the first the instructions that nothing in the
// rest of the source could change, instead of reading them again.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// First pass, before a statement is read: counts it and starts to watch it.
void WatchStatement(Assembler& as);
// First pass, after the statement: keeps it when its bytes are final.
void KeepStatement(Assembler& as, int result);
// First pass, after an EQU's value is read: keeps it when the value is final.
void KeepDefinition(Assembler& as, int result, int registerCode);
// Second pass, before a statement is read: when the first pass kept it,
// restores its bytes or value and its cursor and returns kResultInstruction
// or kResultReusedEqu; else 0.
int ReuseStatement(Assembler& as);
// Second pass, after a statement, when records are only checked: aborts the
// run if the statement's record differs from what was read.
void CheckReusedStatement(Assembler& as, int result);
// The same for an EQU, once its value is read again; registerCode < 0 when
// no register was read.
void CheckReusedDefinition(Assembler& as, int result, int registerCode);

}  // namespace ta51
