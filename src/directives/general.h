// Small directives of a line or two each: the module name, the title, FAIL,
// the page controls, the library list and the no-overlay list.
#pragma once

#include "core/assembler.h"

namespace ta51 {

int NameDirective(Assembler& as);
int TitleDirective(Assembler& as);
int FailDirective(Assembler& as);
int PageDirective(Assembler& as);
int SpaceDirective(Assembler& as);
int IncludeLibraryDirective(Assembler& as);
int NoOverlayDirective(Assembler& as);

}  // namespace ta51
