// The code image as Intel HEX or as a raw binary.
#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

namespace ta51::linker {

// Data records of at most 16 bytes in address order, none across a gap,
// then the end record.
void WriteIntelHex(FILE* stream, const std::vector<uint8_t>& image, const std::vector<int32_t>& owner);
// The bytes from the lowest to the highest loaded one, gaps filled.
void WriteBinary(FILE* stream, const std::vector<uint8_t>& image, const std::vector<int32_t>& owner, uint8_t fill);

}  // namespace ta51::linker
