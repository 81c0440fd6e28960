// The list file's text on its way to the run's list buffer: the two places
// a listed row can go and the numbers written into them. Used by list_file.cpp
// only.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "core/assembler.h"

namespace ta51::list_text {

inline void Write(Assembler& as, std::string_view text) { AppendToList(as, text); }

inline void Write(Assembler& as, char c) {
  ListBuffer& buffer = as.ListPending;
  if (buffer.used == ListBuffer::kCapacity) FlushListBuffer(as);
  buffer.data[buffer.used++] = c;
}

// Writes outside a listed line: on the console they go on at once.
inline void WriteSettled(Assembler& as, std::string_view text) {
  Write(as, text);
  if (as.ListIsConsole) FlushListBuffer(as);
}

// --- Where listed text goes --------------------------------------------------
//
// Both sinks offer the same calls, so one set of row writers serves both:
// Room(n) gives a place for up to n bytes, Done(end) takes what was put there.

// The run's list buffer, its room checked for each piece: rows of any length.
class BufferSink {
 public:
  // Only here can a row meet a line limit.
  static constexpr bool kMayMeetLimit = true;

  explicit BufferSink(Assembler& as) : as_(as), buffer_(as.ListPending) {}

  char* Room(size_t size) {
    if (size > ListBuffer::kCapacity - buffer_.used) FlushListBuffer(as_);
    return buffer_.data + buffer_.used;
  }
  void Done(const char* end) { buffer_.used = static_cast<size_t>(end - buffer_.data); }
  void Put(char c) { Write(as_, c); }
  void Put(const char* text, size_t size) { Write(as_, std::string_view(text, size)); }
  // Padding wider than the room left goes in pieces that fit the buffer.
  void Blanks(size_t count) {
    while (count != 0) {
      if (buffer_.used == ListBuffer::kCapacity) FlushListBuffer(as_);
      const size_t piece = std::min(count, ListBuffer::kCapacity - buffer_.used);
      std::memset(buffer_.data + buffer_.used, ' ', piece);
      buffer_.used += piece;
      count -= piece;
    }
  }

 private:
  Assembler& as_;
  ListBuffer& buffer_;
};

// Blanks go in stores of this many; the room reserved for a row allows for
// the last one reaching past the row's end.
inline constexpr size_t kBlankStore = 16;

// Straight into room reserved for the whole row beforehand (RowRoom).
class ReservedSink {
 public:
  static constexpr bool kMayMeetLimit = false;

  explicit ReservedSink(char* at) : at_(at) {}

  char* Room(size_t) { return at_; }
  void Done(char* end) { at_ = end; }
  void Put(char c) { *at_++ = c; }
  void Put(const char* text, size_t size) {
    std::memcpy(at_, text, size);
    at_ += size;
  }
  void Blanks(size_t count) {
    static constexpr char kBlanks[kBlankStore + 1] = "                ";
    char* const end = at_ + count;
    for (char* at = at_; at < end; at += kBlankStore) std::memcpy(at, kBlanks, kBlankStore);
    at_ = end;
  }
  char* End() const { return at_; }

 private:
  char* at_;
};

inline constexpr char kHexDigits[] = "0123456789ABCDEF";

// The numbers 00 to 99 as pairs of digits.
inline constexpr auto kDigitPairs = [] {
  std::array<char, 200> pairs{};
  for (int n = 0; n < 100; ++n) {
    pairs[2 * n] = static_cast<char>('0' + n / 10);
    pairs[2 * n + 1] = static_cast<char>('0' + n % 10);
  }
  return pairs;
}();

inline int32_t DigitCount(uint32_t value) {
  int32_t count = 1;
  for (uint32_t bound = 10; count < 10 && value >= bound; bound *= 10) ++count;
  return count;
}

// Writes the digits of `value` so that they end just before `end`; returns
// where they start.
inline char* DigitsBefore(char* end, uint32_t value) {
  for (; value >= 100; value /= 100) {
    const size_t pair = 2 * static_cast<size_t>(value % 100);
    *--end = kDigitPairs[pair + 1];
    *--end = kDigitPairs[pair];
  }
  if (value >= 10) {
    *--end = kDigitPairs[2 * value + 1];
    *--end = kDigitPairs[2 * value];
  } else {
    *--end = static_cast<char>('0' + value);
  }
  return end;
}

// The widest fill; it also holds the widest number, 10 digits and a sign.
inline constexpr int32_t kDecimalFillLimit = 16;
inline constexpr char kBlankFill[kDecimalFillLimit + 1] = "                ";
inline constexpr char kZeroFill[kDecimalFillLimit + 1] = "0000000000000000";

// Writes a decimal number right-aligned in `width` columns (at most
// kDecimalFillLimit) at `out`, as "%5d" (fill ' ') or "%05d" (fill '0')
// writes it: zeros go after the sign, blanks before it. Wider numbers take
// the room they need. Needs kDecimalFillLimit bytes; returns the end.
inline char* DecimalText(char* out, int64_t value, int32_t width, char fill) {
  // Every number listed is an int or an unsigned int.
  const uint32_t magnitude = static_cast<uint32_t>(value < 0 ? 0 - value : value);
  const int32_t sign = value < 0 ? 1 : 0;
  const int32_t size = std::max(width, DigitCount(magnitude) + sign);
  // The fill goes first, in one store; the digits then cover what they need.
  std::memcpy(out, fill == '0' ? kZeroFill : kBlankFill, kDecimalFillLimit);
  char* const digits = DigitsBefore(out + size, magnitude);
  if (sign != 0) *(fill == '0' ? out : digits - 1) = '-';
  return out + size;
}

// " XXXX": a listed address or value, with more digits when it needs them.
// Needs kAddressRoom bytes; returns the end.
inline constexpr size_t kAddressRoom = 9;

inline char* AddressText(char* out, uint32_t value) {
  int digits = 4;
  while (digits < 8 && (value >> (4 * digits)) != 0) ++digits;
  out[0] = ' ';
  char* at = out + digits;
  for (int shift = 0; shift < 16; shift += 4) *at-- = kHexDigits[(value >> shift) & 15];
  for (value >>= 16; at > out; value >>= 4) *at-- = kHexDigits[value & 15];
  return out + 1 + digits;
}

// " XX": a listed byte.
inline char* ByteText(char* out, uint8_t value) {
  out[0] = ' ';
  out[1] = kHexDigits[value >> 4];
  out[2] = kHexDigits[value & 15];
  return out + 3;
}

}  // namespace ta51::list_text
