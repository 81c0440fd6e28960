// Conditional assembly: the IF family of both dialects, the $IF
// family of the .a51 dialect, and the two skip scanners that consume a false
// section. ProcessConditional and ProcessConditionalEnd are declared with
// the other text-level statements in textlang.h.
#pragma once

#include <string>

#include "core/assembler.h"

namespace ta51 {

// $IF, $ENDIF, $ELSE and $ELSEIF: codes 11 to 14 of the dollar controls.
int ProcessControlConditional(Assembler& as, int code);

// One string operand of IFC, IFNC, IFIC or IFINC at the read offset, into
// `buffer`; false after an error. The terminating character stays unread.
bool ReadConditionalString(Assembler& as, std::string& buffer);

// Read and drop lines up to the end of a false IF-family section: the
// matching ENDC, or with `stopAtElse` an ELSE or ELSEC of the same level.
// The line that ends the skip is left as the current line, marked as a
// comment line, for the pass loop to list.
void SkipConditionalBlock(Assembler& as, bool stopAtElse);
// The same for a $IF block: up to the matching $ENDIF, or with `stopAtElse`
// a $ELSE, or a $ELSEIF whose condition holds, of the same level.
void SkipControlBlock(Assembler& as, bool stopAtElse);

}  // namespace ta51
