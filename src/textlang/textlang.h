// The statement handlers of conditional assembly and the macro languages.
#pragma once

#include "core/assembler.h"

namespace ta51 {

int ProcessConditional(Assembler& as, int code);
int ProcessConditionalEnd(Assembler& as, int code);
// A percent keyword at the opcode field: %*DEFINE and %IF act, the others
// are statements that do nothing (result 2).
int PercentKeyword(Assembler& as, int code);
// Percent call at the opcode field; true if it consumed the statement.
bool TryPercentCall(Assembler& as);
// MACRO or .MACRO (results 6 and 7): defines in the first pass, walks over
// the definition in the second.
int MacroStatement(Assembler& as, int result);
// A call (results 8 and 9): lists the call line and runs the body.
int MacroCall(Assembler& as, int result);
// Rewrites the word at `position` of the current line with the arguments of
// the running macro call; `operandField` is false at the opcode field, in a
// skip scanner and in the operands of a nested call. Does nothing outside an
// expansion.
void SubstituteParameters(Assembler& as, int32_t position, bool operandField);

}  // namespace ta51
