#include "textlang/textlang.h"

#include "core/diagnostics.h"

namespace ta51 {

namespace {
int Unsupported(Assembler& as) { return ReportError(as, 104); }
}  // namespace

int PercentKeyword(Assembler& as, int) { return Unsupported(as); }
bool TryPercentCall(Assembler&) { return false; }
int MacroStatement(Assembler& as, int) { return Unsupported(as); }
int MacroCall(Assembler& as, int) { return Unsupported(as); }
void SubstituteParameters(Assembler&, int32_t, bool) {}

}  // namespace ta51
