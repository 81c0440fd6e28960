// Conditional assembly and the macro languages. Until they are built, their
// statements are recognised and refused with "Unsupported option/directive".
#pragma once

#include "core/assembler.h"

namespace ta51 {

int ProcessConditional(Assembler& as, int code);
int ProcessConditionalEnd(Assembler& as, int code);
int PercentKeyword(Assembler& as, int code);
// Percent call at the opcode field; true if it consumed the statement.
bool TryPercentCall(Assembler& as);
int MacroStatement(Assembler& as, int result);
int MacroCall(Assembler& as, int result);

}  // namespace ta51
