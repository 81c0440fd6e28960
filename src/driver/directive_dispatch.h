// Handlers of directives and dollar controls.
#pragma once

#include "core/assembler.h"

namespace ta51 {

int ProcessDirective(Assembler& as, int code);
int ProcessControl(Assembler& as, int code);

}  // namespace ta51
