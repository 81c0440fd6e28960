#include "linker/image_output.h"

namespace ta51::linker {

namespace {

constexpr size_t kHexRecordBytes = 16;

void WriteHexRecord(FILE* stream, uint32_t address, const uint8_t* bytes, size_t count) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  char line[1 + 2 * (4 + kHexRecordBytes + 1) + 2];
  size_t used = 0;
  uint8_t sum = 0;
  auto put = [&](uint8_t byte) {
    line[used++] = kDigits[byte >> 4];
    line[used++] = kDigits[byte & 15];
    sum = static_cast<uint8_t>(sum + byte);
  };
  line[used++] = ':';
  put(static_cast<uint8_t>(count));
  put(static_cast<uint8_t>(address >> 8));
  put(static_cast<uint8_t>(address));
  put(0);
  for (size_t i = 0; i < count; ++i) put(bytes[i]);
  put(static_cast<uint8_t>(0u - sum));
  line[used++] = '\n';
  std::fwrite(line, 1, used, stream);
}

}  // namespace

void WriteIntelHex(FILE* stream, const std::vector<uint8_t>& image, const std::vector<int32_t>& owner) {
  uint32_t address = 0;
  while (address < image.size()) {
    if (owner[address] < 0) {
      ++address;
      continue;
    }
    size_t count = 0;
    while (count < kHexRecordBytes && address + count < image.size() && owner[address + count] >= 0) ++count;
    WriteHexRecord(stream, address, image.data() + address, count);
    address += static_cast<uint32_t>(count);
  }
  std::fputs(":00000001FF\n", stream);
}

void WriteBinary(FILE* stream, const std::vector<uint8_t>& image, const std::vector<int32_t>& owner, uint8_t fill) {
  size_t first = 0;
  while (first < image.size() && owner[first] < 0) ++first;
  size_t last = image.size();
  while (last > first && owner[last - 1] < 0) --last;
  std::vector<uint8_t> bytes(image.begin() + static_cast<std::ptrdiff_t>(first),
                             image.begin() + static_cast<std::ptrdiff_t>(last));
  for (size_t i = 0; i < bytes.size(); ++i)
    if (owner[first + i] < 0) bytes[i] = fill;
  std::fwrite(bytes.data(), 1, bytes.size(), stream);
}

}  // namespace ta51::linker
