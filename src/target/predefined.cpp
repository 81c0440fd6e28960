#include "target/predefined.h"

namespace ta51 {

const char* const kRegisterNames[17] = {"A",   "R0",  "R1",  "R2",  "R3",  "R4",  "R5",  "R6", "R7",
                                        "AR0", "AR1", "AR2", "AR3", "AR4", "AR5", "AR6", "AR7"};
bool IsRegisterName(std::string_view) { return false; }
void EnterPredefinedSymbols(Assembler&, bool, bool) {}
void EnterAllPredefinedSymbols(Assembler&, bool) {}
void EnterBankRegisters(Assembler&, int) {}
int RegisterOperand(Assembler&, std::string_view) { return -1; }

}  // namespace ta51
