// Turns an assembler's output into a code memory image, so that two
// assemblers' results can be compared with cmp:
//
//   ta51_image obj|hex INPUT OUTPUT
//
// "obj" reads a ta51 object module of absolute code segments: the ST/ASL
// records give each segment's start, SB selects a segment, LR loads bytes at
// its location and ASP moves the location. "hex" reads Intel HEX (data, end,
// and extended segment/linear address records; checksums checked).
// OUTPUT gets one line "AAAA BB" per loaded byte, in address order.
// A byte loaded twice, an address above FFFFH, a relocatable segment, a
// field still to be resolved by the linker or a malformed record is an
// error: a message on standard error and exit status 1.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kSpace = 0x10000;

class Image {
 public:
  bool Load(uint32_t address, int byte, std::string& error) {
    if (address >= kSpace) return Fail(error, "byte above FFFFH at " + HexText(address));
    if (loaded_[address]) return Fail(error, "byte loaded twice at " + HexText(address));
    loaded_[address] = true;
    bytes_[address] = static_cast<uint8_t>(byte);
    return true;
  }

  bool Write(const char* path) const {
    FILE* out = std::fopen(path, "wb");
    if (out == nullptr) return false;
    for (uint32_t a = 0; a < kSpace; ++a)
      if (loaded_[a]) std::fprintf(out, "%04X %02X\n", a, bytes_[a]);
    return std::fclose(out) == 0;
  }

  static std::string HexText(uint32_t value) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%XH", value);
    return buffer;
  }
  static bool Fail(std::string& error, const std::string& text) {
    error = text;
    return false;
  }

 private:
  std::vector<bool> loaded_ = std::vector<bool>(kSpace);
  std::vector<uint8_t> bytes_ = std::vector<uint8_t>(kSpace);
};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The value of hex digits text[from, to); -1 if one is no digit or none stand there.
long HexValue(const std::string& text, size_t from, size_t to) {
  if (from >= to || to > text.size() || to - from > 8) return -1;
  long value = 0;
  for (size_t i = from; i < to; ++i) {
    int digit = HexDigit(text[i]);
    if (digit < 0) return -1;
    value = value * 16 + digit;
  }
  return value;
}

// ta51 object module: records end with ".\r\n"; the last one is "ME.".
class ObjectReader {
 public:
  explicit ObjectReader(Image& image) : image_(image) {}

  bool Record(const std::string& r, std::string& error) {
    if (r.rfind("ST", 0) == 0) return Segment(r, error);
    if (r.rfind("ASL", 0) == 0) return Start(r, error);
    if (r.rfind("SB", 0) == 0) return Select(r, error);
    if (r.rfind("ASP,", 0) == 0) return Move(r, error);
    if (r.rfind("LR", 0) == 0) return LoadRecord(r, error);
    return true;  // head, sizes, symbols, IRG, ME: no bytes
  }

 private:
  Image& image_;
  std::map<long, long> starts_;     // segment number: start address (absolute code only)
  std::map<long, long> locations_;  // segment number: where its next byte goes
  long current_ = -1;

  bool Segment(const std::string& r, std::string& error) {
    size_t comma = r.find(',');
    long number = HexValue(r, 2, comma);
    if (number < 0) return Image::Fail(error, "bad record " + r);
    bool absolute = (r.size() >= 2 && r.compare(r.size() - 2, 2, ",A") == 0) || r.find(",A,") != std::string::npos;
    if (!absolute) return Image::Fail(error, "not an absolute segment: " + r);
    return true;
  }

  bool Start(const std::string& r, std::string& error) {
    size_t comma = r.find(',');
    long number = HexValue(r, 3, comma);
    long address = comma == std::string::npos ? -1 : HexValue(r, comma + 1, r.size());
    if (number < 0 || address < 0) return Image::Fail(error, "bad record " + r);
    starts_[number] = locations_[number] = address;
    return true;
  }

  bool Select(const std::string& r, std::string& error) {
    current_ = HexValue(r, 2, r.size());
    if (starts_.count(current_) == 0) return Image::Fail(error, "segment without a start: " + r);
    return true;
  }

  bool Move(const std::string& r, std::string& error) {
    long address = HexValue(r, 4, r.size());
    if (address < 0 || current_ < 0) return Image::Fail(error, "bad record " + r);
    locations_[current_] = address;
    return true;
  }

  bool LoadRecord(const std::string& r, std::string& error) {
    if (current_ < 0) return Image::Fail(error, "load before any segment: " + r);
    if (r.find('(') != std::string::npos) return Image::Fail(error, "field left to the linker: " + r);
    if (r.size() % 2 != 0) return Image::Fail(error, "odd number of digits: " + r);
    long& location = locations_[current_];
    for (size_t i = 2; i < r.size(); i += 2) {
      long byte = HexValue(r, i, i + 2);
      if (byte < 0) return Image::Fail(error, "bad record " + r);
      if (!image_.Load(static_cast<uint32_t>(location++), static_cast<int>(byte), error)) return false;
    }
    return true;
  }
};

bool ReadObject(std::istream& in, Image& image, std::string& error) {
  ObjectReader reader(image);
  std::string record;
  bool ended = false;
  char c;
  while (in.get(c)) {
    if (c == '\r' || c == '\n') continue;
    record += c;
    if (c != '.' || in.peek() != '\r') continue;
    record.pop_back();
    if (record == "ME") ended = true;
    if (!reader.Record(record, error)) return false;
    record.clear();
  }
  if (!ended) return Image::Fail(error, "no end record (ME)");
  return true;
}

bool ReadHex(std::istream& in, Image& image, std::string& error) {
  std::string line;
  uint32_t base = 0;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    long count = HexValue(line, 1, 3);
    if (line[0] != ':' || count < 0 || line.size() != static_cast<size_t>(11 + 2 * count))
      return Image::Fail(error, "bad line " + line);
    int sum = 0;
    for (size_t i = 1; i < line.size(); i += 2) {
      long byte = HexValue(line, i, i + 2);
      if (byte < 0) return Image::Fail(error, "bad line " + line);
      sum += static_cast<int>(byte);
    }
    if ((sum & 0xFF) != 0) return Image::Fail(error, "bad checksum " + line);
    long address = HexValue(line, 3, 7);
    long type = HexValue(line, 7, 9);
    if (type == 1) return true;
    if (type == 2 || type == 4) {
      base = static_cast<uint32_t>(HexValue(line, 9, 13)) << (type == 2 ? 4 : 16);
    } else if (type == 0) {
      for (long i = 0; i < count; ++i) {
        long byte = HexValue(line, static_cast<size_t>(9 + 2 * i), static_cast<size_t>(11 + 2 * i));
        if (!image.Load(base + static_cast<uint32_t>(address + i), static_cast<int>(byte), error)) return false;
      }
    }
  }
  return Image::Fail(error, "no end record");
}

}  // namespace

int main(int argc, char** argv) {
  std::string mode = argc == 4 ? argv[1] : "";
  if (mode != "obj" && mode != "hex") {
    std::fprintf(stderr, "usage: ta51_image obj|hex INPUT OUTPUT\n");
    return 2;
  }
  std::ifstream in(argv[2], std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "ta51_image: cannot read %s\n", argv[2]);
    return 1;
  }
  Image image;
  std::string error;
  bool read = mode == "obj" ? ReadObject(in, image, error) : ReadHex(in, image, error);
  if (!read) {
    std::fprintf(stderr, "ta51_image: %s: %s\n", argv[2], error.c_str());
    return 1;
  }
  if (!image.Write(argv[3])) {
    std::fprintf(stderr, "ta51_image: cannot write %s\n", argv[3]);
    return 1;
  }
  return 0;
}
