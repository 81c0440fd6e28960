// A buffered text input file with one character of push-back and rewinding.
#pragma once

#include <cstdio>
#include <cstring>
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
  // Gives back the byte that Get returned last. It still stands in the
  // buffer just before the read position, so stepping back is enough and the
  // fast line reader stays usable.
  void Unget(int c) {
    if (position_ > 0 && static_cast<unsigned char>(buffer_[position_ - 1]) == c)
      --position_;
    else
      pushedBack_ = c;
  }
  // Appends the buffered bytes before the next carriage return, line feed or
  // NUL to `text`, so that a line costs a scan rather than a call per byte;
  // returns how many were taken (0 at a special byte or an empty buffer).
  size_t AppendPlainRun(std::string& text) {
    if (pushedBack_ != kNone) return 0;
    const char* begin = buffer_.data() + position_;
    const char* end = buffer_.data() + filled_;
    const char* stop = begin;
    while (stop != end && *stop != '\n' && *stop != '\r' && *stop != '\0') ++stop;
    text.append(begin, stop);
    position_ += static_cast<size_t>(stop - begin);
    return static_cast<size_t>(stop - begin);
  }
  // Takes a whole line with its line feed into `text` when it is a simple
  // one: ended by a lone line feed inside the buffer, with no carriage
  // return, NUL or continuation backslash. False leaves everything as it was,
  // for the byte-wise reader.
  bool TakeSimpleLine(std::string& text) {
    if (pushedBack_ != kNone) return false;
    if (position_ == filled_ && !Refill()) return false;
    const char* begin = buffer_.data() + position_;
    const char* end = buffer_.data() + filled_;
    const char* newLine = static_cast<const char*>(std::memchr(begin, '\n', static_cast<size_t>(end - begin)));
    if (newLine == nullptr || newLine + 1 == end || newLine[1] == '\r') return false;
    if (newLine != begin && newLine[-1] == '\\') return false;
    for (const char* at = begin; at != newLine; ++at)
      if (static_cast<unsigned char>(*at) <= '\r' && (*at == '\r' || *at == '\0')) return false;
    text.assign(begin, newLine + 1);
    position_ += static_cast<size_t>(newLine + 1 - begin);
    return true;
  }
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
