#include "textlang/textlang.h"

#include "core/diagnostics.h"

namespace ta51 {

namespace {
int Unsupported(Assembler& as) { return ReportError(as, 104); }
}  // namespace

int PercentKeyword(Assembler& as, int) { return Unsupported(as); }
bool TryPercentCall(Assembler&) { return false; }

}  // namespace ta51
