#include "symbols/expression.h"

namespace ta51 {

int32_t EvaluateExpression(Assembler&, ExprValue&, std::string*, bool) { return 0; }
int ScanToken(Assembler& as, bool) { return as.Line.text.empty() ? 0 : as.Line.text[as.Line.offset++]; }

}  // namespace ta51
