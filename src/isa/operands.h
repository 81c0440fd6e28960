// Operand readers of the instruction encoder, with their range and type
// checks, and the fixups they leave for the linker.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

// Characters that end an operand, and the zero that ends the text. Every
// terminator lies below 64, so a set is one word and a test one shift.
class TerminatorSet {
 public:
  consteval explicit TerminatorSet(std::string_view characters) {
    for (char c : characters) {
      if (static_cast<unsigned char>(c) >= 64) throw "a terminator must lie below 64";
      mask_ |= uint64_t{1} << static_cast<unsigned char>(c);
    }
  }
  bool Ends(char c) const {
    const auto code = static_cast<unsigned char>(c);
    return code == 0 || (code < 64 && ((mask_ >> code) & 1) != 0);
  }

 private:
  uint64_t mask_ = 0;
};

inline constexpr TerminatorSet LastOperandEnd{"; \t\n"};
inline constexpr TerminatorSet InnerOperandEnd{"; \t\n,"};
inline constexpr TerminatorSet CommaOrBlank{", "};
inline constexpr TerminatorSet PlusOrBlank{"+ "};

struct PatternMatch {
  bool matched = false;
  int passed = 0;
  int registerNumber = -1;
};

PatternMatch MatchPattern(Assembler& as, std::string_view pattern, TerminatorSet terminators);
// As MatchPattern, stepping back on failure, and back over a final `?`.
bool MatchToken(Assembler& as, std::string_view pattern, TerminatorSet terminators,
                int* registerNumber = nullptr);

// Ways of reading a byte or word operand: what its type must be.
enum OperandMode : int { kDirectAddress = 0, kCodeAddress = 1, kImmediateValue = 2, kPlainWord = 3 };

// The register number 0..7 of a RegisterCode; codes outside R1..R7 give 0.
int RegisterNumber(int registerCode);
// A register alias with a code in [low, high] that a terminator follows.
int MatchRegisterAlias(Assembler& as, int low, int high, TerminatorSet terminators);
// `A` or an alias of it, followed by a terminator left unread.
bool MatchAccumulator(Assembler& as, TerminatorSet terminators);
// Consumes `c` after blanks if it stands there.
bool NextIs(Assembler& as, char c);

bool IsAccumulator(Assembler& as);
bool IsAccumulatorComma(Assembler& as);
bool ReadRegister(Assembler& as, TerminatorSet terminators, int& number);
int ReadIndirectRegister(Assembler& as, TerminatorSet terminators);
bool ExpectComma(Assembler& as);
char NextNonBlank(Assembler& as);

int32_t ReadByteOperand(Assembler& as, OperandSlot& slot, int mode);
int32_t ReadWordOperand(Assembler& as, OperandSlot& slot, int mode);
int32_t ReadBitOperand(Assembler& as);
int32_t ReadRelativeOperand(Assembler& as, int instructionLength);
// With `haveValue` false it first evaluates into OperandSlot1.
int32_t ReadAbsoluteTarget(Assembler& as, bool haveValue, int32_t value);
bool IsBitAddressable(uint32_t address);

// printf into a string of any length.
std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace ta51
