// A buffered text input file with one character of push-back and rewinding.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace ta51 {

class InputFile {
 public:
  static constexpr int kEnd = -1;

  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Opens a file for reading, or returns nullptr.
  static std::unique_ptr<InputFile> Open(const std::string& path);

  int Get() {
    if (pushedBack_ != kNone) {
      int c = pushedBack_;
      pushedBack_ = kNone;
      return c;
    }
    if (position_ == filled_ && !Refill()) return kEnd;
    return static_cast<unsigned char>(buffer_[position_++]);
  }
  void Unget(int c) { pushedBack_ = c; }
  void Rewind();

 private:
  static constexpr int kNone = -2;
  explicit InputFile(FILE* file);
  bool Refill();

  FILE* file_;
  std::vector<char> buffer_;
  size_t position_ = 0;
  size_t filled_ = 0;
  int pushedBack_ = kNone;
};

}  // namespace ta51
