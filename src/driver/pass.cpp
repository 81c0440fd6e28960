#include "driver/pass.h"
namespace ta51 {
void AssembleFile(Assembler&) {}
void ResetPassState(Assembler&) {}
void AssemblePass(Assembler&) {}
int ProcessStatement(Assembler&) { return 0; }
void CheckOperandEnd(Assembler&) {}
void EnsureCurrentSegment(Assembler&) {}
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
void SkipBlanks(Assembler& as) { while (IsBlank(as.Line.Peek())) ++as.Line.offset; }
}
