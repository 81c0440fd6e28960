#include "platform/input_file.h"

namespace ta51 {

namespace {
constexpr size_t kBufferSize = 1 << 16;
}

InputFile::InputFile(FILE* file) : file_(file), buffer_(kBufferSize) {}

InputFile::~InputFile() { std::fclose(file_); }

std::unique_ptr<InputFile> InputFile::Open(const std::string& path) {
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return nullptr;
  return std::unique_ptr<InputFile>(new InputFile(file));
}

bool InputFile::Refill() {
  filled_ = std::fread(buffer_.data(), 1, buffer_.size(), file_);
  position_ = 0;
  return filled_ != 0;
}

void InputFile::Rewind() {
  std::rewind(file_);
  position_ = filled_ = 0;
  pushedBack_ = kNone;
}

}  // namespace ta51
