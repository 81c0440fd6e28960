#include "platform/input_file.h"

#include <algorithm>

#include "platform/platform.h"

namespace ta51 {

namespace {
// Index of the first `byte` at or behind `from` in the filled buffer, or `filled`.
size_t FindByte(const char* buffer, size_t from, size_t filled, char byte) {
  const void* found = std::memchr(buffer + from, byte, filled - from);
  return found == nullptr ? filled : static_cast<size_t>(static_cast<const char*>(found) - buffer);
}
}  // namespace

InputFile::InputFile(FILE* file, char* buffer) : file_(file), buffer_(buffer) {
  if (buffer_ == nullptr) {
    ownBuffer_ = std::make_unique_for_overwrite<char[]>(kBufferSize);
    buffer_ = ownBuffer_.get();
  }
}

InputFile::~InputFile() { std::fclose(file_); }

std::unique_ptr<InputFile> InputFile::Open(const std::string& path, char* buffer) {
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return nullptr;
  return std::unique_ptr<InputFile>(new InputFile(file, buffer));
}

bool InputFile::Refill() {
  filled_ = std::fread(buffer_, 1, kBufferSize, file_);
  position_ = 0;
  nextReturn_ = FindByte(buffer_, 0, filled_, '\r');
  nextNul_ = FindByte(buffer_, 0, filled_, '\0');
  plainEnd_ = std::min(nextReturn_, nextNul_);
  return filled_ != 0;
}

void InputFile::PushBack(int c) {
  pushedBack_ = c;
  plainEnd_ = 0;
}

bool InputFile::FindPlainEnd() {
  if (pushedBack_ != kNone) return false;
  if (nextReturn_ < position_) nextReturn_ = FindByte(buffer_, position_, filled_, '\r');
  if (nextNul_ < position_) nextNul_ = FindByte(buffer_, position_, filled_, '\0');
  plainEnd_ = std::min(nextReturn_, nextNul_);
  return plainEnd_ > position_;
}

bool InputFile::IsNamedBy(const std::string& path) const { return NamesOpenFile(path, file_); }

void InputFile::Rewind() {
  std::rewind(file_);
  position_ = filled_ = 0;
  nextReturn_ = nextNul_ = plainEnd_ = 0;
  pushedBack_ = kNone;
}

}  // namespace ta51
