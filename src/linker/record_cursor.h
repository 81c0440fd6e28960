// Reading the fields of one object record: hexadecimal numbers, counted
// names and literal text. Every reader returns false and leaves the cursor
// where it was when the text does not match.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ta51::linker {

constexpr int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

class RecordCursor {
 public:
  explicit RecordCursor(std::string_view text, size_t at = 0) : text_(text), at_(at) {}

  bool AtEnd() const { return at_ >= text_.size(); }
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  size_t Offset() const { return at_; }
  std::string_view Rest() const { return text_.substr(at_ < text_.size() ? at_ : text_.size()); }
  void Skip(size_t count) { at_ += count; }

  bool Literal(std::string_view literal) {
    if (text_.substr(at_ < text_.size() ? at_ : text_.size(), literal.size()) != literal) return false;
    at_ += literal.size();
    return true;
  }

  // One to eight hexadecimal digits.
  bool Hex(uint32_t& value) {
    size_t start = at_;
    uint32_t result = 0;
    while (at_ < text_.size() && HexDigitValue(text_[at_]) >= 0) {
      result = result << 4 | static_cast<uint32_t>(HexDigitValue(text_[at_]));
      ++at_;
    }
    size_t digits = at_ - start;
    if (digits == 0 || digits > 8) {
      at_ = start;
      return false;
    }
    value = result;
    return true;
  }

  // The text up to the next `stop` character (not consumed), or false.
  bool Until(char stop, std::string_view& part) {
    size_t end = text_.find(stop, at_);
    if (end == std::string_view::npos) return false;
    part = text_.substr(at_, end - at_);
    at_ = end;
    return true;
  }

  // A counted name: its length as at least `minDigits` hexadecimal digits,
  // then that many characters, which must be followed by one of `followers`
  // (or the end, when `followers` holds '\0'). A name may begin with a
  // character that is also a digit, so the shortest count that leads to a
  // follower wins. `quoted`: the name stands in double quotes, counted.
  bool CountedName(std::string& name, int minDigits, std::string_view followers, bool quoted = false) {
    for (int digits = minDigits; digits <= 8; ++digits) {
      if (at_ + static_cast<size_t>(digits) > text_.size()) return false;
      uint32_t length = 0;
      bool number = true;
      for (int i = 0; i < digits; ++i) {
        int digit = HexDigitValue(text_[at_ + static_cast<size_t>(i)]);
        if (digit < 0) number = false;
        length = length << 4 | static_cast<uint32_t>(digit < 0 ? 0 : digit);
      }
      if (!number) return false;
      size_t start = at_ + static_cast<size_t>(digits);
      if (length > text_.size() - start) continue;
      size_t end = start + length;
      char after = end < text_.size() ? text_[end] : '\0';
      if (followers.find(after) == std::string_view::npos) continue;
      std::string_view body = text_.substr(start, length);
      if (quoted) {
        if (body.size() < 2 || body.front() != '"' || body.back() != '"') continue;
        body = body.substr(1, body.size() - 2);
      }
      name.assign(body);
      at_ = end;
      return true;
    }
    return false;
  }

 private:
  std::string_view text_;
  size_t at_;
};

// One item of an LR record: absolute bytes or a field for the linker.
struct LoadItem {
  bool field = false;
  std::string_view bytes;      // pairs of hexadecimal digits
  std::string_view text;       // the expression of a field
  int size = 0;                // bytes of a field
  std::string_view reference;  // "path(line)", with every `.` written `*`
};

enum class ItemResult { Item, End, Bad, BadSize };

// The next item of an LR record's items at `cursor`.
inline ItemResult NextLoadItem(RecordCursor& cursor, LoadItem& item) {
  if (cursor.AtEnd()) return ItemResult::End;
  item = LoadItem{};
  if (cursor.Peek() != '(') {
    std::string_view rest = cursor.Rest();
    size_t length = 0;
    while (length < rest.size() && HexDigitValue(rest[length]) >= 0) ++length;
    if (length == 0 || length % 2 != 0) return ItemResult::Bad;
    item.bytes = rest.substr(0, length);
    cursor.Skip(length);
    return ItemResult::Item;
  }
  // "(" text "," size "," letter [ "," length reference ] ")". The text has
  // no comma: a comma at depth 0 ends it.
  std::string_view rest = cursor.Rest();
  size_t at = 1;
  int depth = 0;
  while (at < rest.size() && !(rest[at] == ',' && depth == 0)) {
    if (rest[at] == '(') ++depth;
    if (rest[at] == ')' && --depth < 0) return ItemResult::Bad;
    ++at;
  }
  if (at >= rest.size() || at == 1) return ItemResult::Bad;
  item.field = true;
  item.text = rest.substr(1, at - 1);
  ++at;
  size_t digits = 0;
  int size = 0;
  while (at < rest.size() && rest[at] >= '0' && rest[at] <= '9' && digits < 4) {
    size = size * 10 + (rest[at] - '0');
    ++at;
    ++digits;
  }
  if (digits == 0 || at + 2 >= rest.size() || rest[at] != ',') return ItemResult::Bad;
  char letter = rest[at + 1];
  if (letter != 'B' && letter != 'D' && letter != 'I') return ItemResult::Bad;
  at += 2;
  item.size = size;
  RecordCursor tail(rest, at);
  if (tail.Literal(")")) {
    cursor.Skip(tail.Offset());
  } else {
    std::string reference;
    if (!tail.Literal(",") || !tail.CountedName(reference, 4, ")")) return ItemResult::Bad;
    size_t end = tail.Offset();
    item.reference = rest.substr(end - reference.size(), reference.size());
    cursor.Skip(end + 1);
  }
  return size == 1 || size == 2 ? ItemResult::Item : ItemResult::BadSize;
}

}  // namespace ta51::linker
