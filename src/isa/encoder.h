// The 8051 instruction set: mnemonics and their encodings.
#pragma once

#include <cstdint>

#include "core/assembler.h"

namespace ta51 {

struct Mnemonic {
  const char* word;
  uint8_t base;
};
extern const Mnemonic kMnemonics[45];

// Encodes the statement at the read offset; 1, or 0 after a report.
int EncodeInstruction(Assembler& as, uint8_t baseOpcode, int position);

}  // namespace ta51
