// Operand readers of the instruction encoder, with their range and type
// checks, and the fixups they leave for the linker.
#pragma once

#include <cstdint>
#include <string_view>

#include "driver/assembler.h"

namespace ta51 {

// Terminator sets; each also accepts the zero that ends the text.
extern const std::string_view LastOperandEnd;
extern const std::string_view InnerOperandEnd;
extern const std::string_view CommaOrBlank;
extern const std::string_view PlusOrBlank;

struct PatternMatch {
  bool matched = false;
  int passed = 0;
  int registerNumber = -1;
};

PatternMatch MatchPattern(Assembler& as, std::string_view pattern, std::string_view terminators);
// As MatchPattern, stepping back on failure, and back over a final `?`.
bool MatchToken(Assembler& as, std::string_view pattern, std::string_view terminators,
                int* registerNumber = nullptr);

bool IsAccumulator(Assembler& as);
bool IsAccumulatorComma(Assembler& as);
bool ReadRegister(Assembler& as, std::string_view terminators, int& number);
int ReadIndirectRegister(Assembler& as, std::string_view terminators);
bool ExpectComma(Assembler& as);
char NextNonBlank(Assembler& as);

int32_t ReadByteOperand(Assembler& as, OperandSlot& slot, int mode);
int32_t ReadWordOperand(Assembler& as, OperandSlot& slot, int mode);
int32_t ReadBitOperand(Assembler& as);
int32_t ReadRelativeOperand(Assembler& as, int instructionLength);
// With `haveValue` false it first evaluates into OperandSlot1.
int32_t ReadAbsoluteTarget(Assembler& as, bool haveValue, int32_t value);
bool IsBitAddressable(uint32_t address);

}  // namespace ta51
