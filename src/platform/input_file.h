// A buffered text input file with one character of push-back and rewinding.
#pragma once

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace ta51 {

class InputFile {
 public:
  static constexpr int kEnd = -1;
  static constexpr size_t kBufferSize = size_t{1} << 16;

  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Opens a file for reading, or returns nullptr. A `buffer` of kBufferSize
  // bytes, when given, is used instead of one of its own and must outlive
  // the file.
  static std::unique_ptr<InputFile> Open(const std::string& path, char* buffer = nullptr);

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
      PushBack(c);
  }
  // Appends the buffered bytes before the next carriage return, line feed or
  // NUL to `text`, so that a line costs a scan rather than a call per byte;
  // returns how many were taken (0 at a special byte or an empty buffer).
  size_t AppendPlainRun(std::string& text) {
    if (pushedBack_ != kNone) return 0;
    const char* begin = buffer_ + position_;
    const char* end = buffer_ + filled_;
    const char* stop = begin;
    while (stop != end && *stop != '\n' && *stop != '\r' && *stop != '\0') ++stop;
    text.append(begin, stop);
    position_ += static_cast<size_t>(stop - begin);
    return static_cast<size_t>(stop - begin);
  }
  // The line at the read position with its line feed, when it is a simple
  // one: ended by a lone line feed inside the buffer, with no carriage
  // return, NUL or continuation backslash. Empty otherwise, for the
  // byte-wise reader; nothing is consumed either way (see Skip).
  // At the end of the buffer the view is empty too: TakeSimpleLine refills.
  std::string_view PeekSimpleLine() {
    if (plainEnd_ <= position_ && !FindPlainEnd()) return {};
    const char* begin = buffer_ + position_;
    const char* plainEnd = buffer_ + plainEnd_;
    const char* newLine = static_cast<const char*>(std::memchr(begin, '\n', plainEnd_ - position_));
    // A line feed right before the block end or a special byte may be part
    // of a longer break: the byte-wise reader decides.
    if (newLine == nullptr || newLine + 1 == plainEnd) return {};
    if (newLine != begin && newLine[-1] == '\\') return {};
    return {begin, static_cast<size_t>(newLine + 1 - begin)};
  }
  // Consumes `count` bytes of a line that PeekSimpleLine returned.
  void Skip(size_t count) { position_ += count; }
  // PeekSimpleLine and Skip with the line copied into `text`.
  bool TakeSimpleLine(std::string& text) {
    if (pushedBack_ == kNone && position_ == filled_ && !Refill()) return false;
    std::string_view line = PeekSimpleLine();
    if (line.empty()) return false;
    text.assign(line.data(), line.size());
    Skip(line.size());
    return true;
  }
  void Rewind();
  // Whether `path` names this file (see NamesOpenFile).
  bool IsNamedBy(const std::string& path) const;

 private:
  static constexpr int kNone = -2;
  InputFile(FILE* file, char* buffer);
  bool Refill();
  // Brings the positions of the next carriage return and NUL up to the read
  // position; false when no plain byte follows it or a byte is pushed back.
  bool FindPlainEnd();
  void PushBack(int c);

  FILE* file_;
  // Not cleared when made: every byte read is first written by a refill.
  std::unique_ptr<char[]> ownBuffer_;
  char* buffer_;
  size_t position_ = 0;
  size_t filled_ = 0;
  int pushedBack_ = kNone;
  // Where the next carriage return and the next NUL at or behind the read
  // position stand in the buffer (filled_ when there is none), and the
  // nearer of the two: the bytes before it need no test per byte. Each is
  // searched for once per stretch of buffer, not once per line. plainEnd_
  // stays 0 while a byte is pushed back, so that one test in PeekSimpleLine
  // covers that case, the end of the buffer and a stale position.
  size_t nextReturn_ = 0;
  size_t nextNul_ = 0;
  size_t plainEnd_ = 0;
};

}  // namespace ta51
