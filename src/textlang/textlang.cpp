#include "textlang/textlang.h"

#include "core/diagnostics.h"

namespace ta51 {

namespace {
int Unsupported(Assembler& as) { return ReportError(as, 104); }
}  // namespace

int ProcessConditional(Assembler& as, int) { return Unsupported(as); }
// ENDM and .ENDM (code 2) that no definition consumed.
int ProcessConditionalEnd(Assembler& as, int code) { return code == 2 ? ReportError(as, 47) : Unsupported(as); }
int PercentKeyword(Assembler& as, int) { return Unsupported(as); }
bool TryPercentCall(Assembler&) { return false; }

}  // namespace ta51
