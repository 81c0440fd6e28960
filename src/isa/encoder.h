// The 8051 instruction set: mnemonics and their encodings.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

struct Mnemonic {
  const char* word;
  uint8_t base;
};
extern const Mnemonic (&kMnemonics)[45];
// The row of an upper-case mnemonic, or -1; `hash` is KeywordHash(word).
int FindMnemonic(std::string_view word, uint32_t hash);

// Encodes the statement at the read offset; 1, or 0 after a report.
int EncodeInstruction(Assembler& as, uint8_t baseOpcode, int position);

}  // namespace ta51
