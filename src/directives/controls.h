// Control statements: OPT in both dialects, and the dollar controls of the
// .a51 dialect that steer the listing and set variables.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// OPT keyword [, keyword] ...: up to kOptWordLimit option keywords.
int OptDirective(Assembler& as);
int SaveControl(Assembler& as);
int RestoreControl(Assembler& as);
int NoListControl(Assembler& as);
int ListControl(Assembler& as);
int TitleControl(Assembler& as);
int EjectControl(Assembler& as);
// $SET(name [= expression], ...) and $RESET(name, ...).
int SetControl(Assembler& as, bool reset);

constexpr int kOptWordLimit = 19;

}  // namespace ta51
