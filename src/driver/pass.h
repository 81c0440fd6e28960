// The line loop of a pass and the classification of a statement.
#pragma once

#include "driver/assembler.h"

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
};

void AssembleFile(Assembler& as);
void ResetPassState(Assembler& as);
void AssemblePass(Assembler& as);
int ProcessStatement(Assembler& as);
// Checks that nothing but a comment follows the operands (error 15).
void CheckOperandEnd(Assembler& as);
// Selects the default absolute code segment when there is no current one.
void EnsureCurrentSegment(Assembler& as);

bool IsBlank(char c);        // space or tab
bool IsWhiteSpace(char c);   // the C classification
void SkipBlanks(Assembler& as);

}  // namespace ta51
