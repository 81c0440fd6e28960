// What every statement handler shares: the result codes it returns to the
// line loop and the helpers that read the line cursor.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// Results of ProcessStatement and of the statement handlers.
enum : int {
  kResultNone = 0,
  kResultInstruction = 1,
  kResultDone = 2,
  kResultEqu = 3,
  kResultDotEqu = 4,
  kResultSet = 5,
  kResultMacro = 6,
  kResultDotMacro = 7,
  kResultMacroCall = 8,
  kResultNamedMacroCall = 9,
  kResultNoLabel = 12,
  kResultListed = 13,
  kResultReusedEqu = 14,  // an EQU the first pass kept: its value is restored, nothing is left to do
};

// Every character of every line passes these, so they are inline.
inline bool IsBlank(char c) { return c == ' ' || c == '\t'; }
inline bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }  // the C classification
inline void SkipBlanks(Assembler& as) {
  LineCursor& line = as.Line;
  while (IsBlank(line.Peek())) ++line.offset;
}
// True when the cursor stands on what may end the operands: a blank, a
// comment or the end of the line.
bool TailIsComment(const LineCursor& line);
// Checks that nothing but a comment follows the operands (error 15).
void CheckOperandEnd(Assembler& as);

}  // namespace ta51
