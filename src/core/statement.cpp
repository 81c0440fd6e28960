#include "core/statement.h"

#include "core/diagnostics.h"

namespace ta51 {

bool TailIsComment(const LineCursor& line) {
  char c = line.Peek();
  if (c == ';' || c == ' ' || c == '\t' || c == '\n' || c == '\0') return true;
  char next = line.At(line.offset + 1);
  return c == '/' && (next == '*' || next == '/');
}


// Blanks may stand between the operands and a comment, but nothing else:
// `MOV A,R0 X` is refused although the register reader stops at the blank.
void CheckOperandEnd(Assembler& as) {
  if (as.LineHasError) return;
  LineCursor& line = as.Line;
  int32_t start = line.offset;
  while (IsBlank(line.Peek())) ++line.offset;
  char c = line.Peek();
  if (c == '\n' || c == '\0' || TailIsComment(line)) {
    line.offset = start;
    return;
  }
  ReportError(as, 15);
}

}  // namespace ta51
