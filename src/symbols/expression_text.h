// The language of expression text: the operators, their binding levels and
// arithmetic, and the way numbers are written. ta51 writes this text into
// object modules; tl51 reads it back and finishes the arithmetic, so both
// take it from here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ta51 {

// Character classes of names, one table look-up each. A word operator
// counts only where no name character follows it.
enum : uint8_t { kNameStartClass = 1, kNameCharClass = 2 };
inline constexpr auto kNameClasses = [] {
  std::array<uint8_t, 256> table{};
  for (int c = 'A'; c <= 'Z'; ++c) table[c] = table[c + 32] = kNameStartClass | kNameCharClass;
  for (int c = '0'; c <= '9'; ++c) table[c] = kNameCharClass;
  for (unsigned char c : {'.', '_', '?'}) table[c] |= kNameStartClass;
  for (unsigned char c : {'?', '$', '@', '_', '~'}) table[c] |= kNameCharClass;
  return table;
}();
// A letter, `.`, `_` or `?`.
inline bool IsNameStart(char c) { return (kNameClasses[static_cast<unsigned char>(c)] & kNameStartClass) != 0; }
// A letter, a digit, `?`, `$`, `@`, `_` or `~`.
inline bool IsNameChar(char c) { return (kNameClasses[static_cast<unsigned char>(c)] & kNameCharClass) != 0; }

// Operator tokens.
enum : int {
  TOK_HIGH = 0x80,
  TOK_LOW = 0x81,
  TOK_BASE = 0x82,
  TOK_SIZE = 0x83,
  TOK_MUL = 0x84,
  TOK_DIV = 0x85,
  TOK_MOD = 0x86,
  TOK_SHL = 0x87,
  TOK_SHR = 0x88,
  TOK_PLUS = 0x89,
  TOK_MINUS = 0x8A,
  TOK_EQ = 0x8B,
  TOK_NE = 0x8C,
  TOK_LT = 0x8D,
  TOK_LE = 0x8E,
  TOK_GT = 0x8F,
  TOK_GE = 0x90,
  TOK_NOT = 0x91,
  TOK_AND = 0x92,
  TOK_OR = 0x93,
  TOK_XOR = 0x94,
};

struct OperatorRow {
  std::string_view spelling;
  int code;
  bool word;  // matched with case ignored, and only if no name character follows
  std::string_view text;  // in linker text: a word stands between blanks
};

// Searched in this order: the longer "<>", "<=" and ">=" come before "<" and ">".
inline constexpr std::array<OperatorRow, 27> kOperators = {{
    {"HIGH", TOK_HIGH, true, " HIGH "},
    {"LOW", TOK_LOW, true, " LOW "},
    {"`BASE", TOK_BASE, true, " `BASE "},
    {"`SIZE", TOK_SIZE, true, " `SIZE "},
    {"MOD", TOK_MOD, true, " MOD "},
    {"SHL", TOK_SHL, true, " SHL "},
    {"SHR", TOK_SHR, true, " SHR "},
    {"EQ", TOK_EQ, true, " EQ "},
    {"NE", TOK_NE, true, " NE "},
    {"LT", TOK_LT, true, " LT "},
    {"LE", TOK_LE, true, " LE "},
    {"GT", TOK_GT, true, " GT "},
    {"GE", TOK_GE, true, " GE "},
    {"NOT", TOK_NOT, true, " NOT "},
    {"AND", TOK_AND, true, " AND "},
    {"OR", TOK_OR, true, " OR "},
    {"XOR", TOK_XOR, true, " XOR "},
    {"*", TOK_MUL, false, "*"},
    {"/", TOK_DIV, false, "/"},
    {"+", TOK_PLUS, false, "+"},
    {"-", TOK_MINUS, false, "-"},
    {"=", TOK_EQ, false, "="},
    {"<>", TOK_NE, false, "<>"},
    {"<=", TOK_LE, false, "<="},
    {">=", TOK_GE, false, ">="},
    {"<", TOK_LT, false, "<"},
    {">", TOK_GT, false, ">"},
}};
static_assert(kOperators.size() <= 32);

namespace detail {

constexpr char UpperOperatorChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// For each character, the operator rows that may start with it, one bit per
// row in table order; most characters start none and cost one look-up.
constexpr std::array<uint32_t, 256> MakeFirstCharacterRows() {
  std::array<uint32_t, 256> rows{};
  for (size_t row = 0; row < kOperators.size(); ++row) {
    char first = kOperators[row].spelling[0];
    rows[static_cast<unsigned char>(first)] |= 1u << row;
    if (kOperators[row].word && first >= 'A' && first <= 'Z')
      rows[static_cast<unsigned char>(first - 'A' + 'a')] |= 1u << row;
  }
  return rows;
}
inline constexpr std::array<uint32_t, 256> kFirstCharacterRows = MakeFirstCharacterRows();

// Length of the operator row's spelling at `text`, or 0 if it is not there.
inline size_t MatchRow(const OperatorRow& row, const char* text) {
  for (size_t i = 0; i < row.spelling.size(); ++i) {
    char c = row.word ? UpperOperatorChar(text[i]) : text[i];
    if (c != row.spelling[i]) return 0;
  }
  return row.spelling.size();
}

}  // namespace detail

// The operator at `text` (a zero-terminated text), or nullptr. A word counts
// only when `isNameChar` is false for the character behind it: the first
// matching row decides, so "ORG" is no operator at all.
template <class IsNameChar>
inline const OperatorRow* MatchOperator(const char* text, IsNameChar isNameChar) {
  for (uint32_t candidates = detail::kFirstCharacterRows[static_cast<unsigned char>(*text)]; candidates != 0;
       candidates &= candidates - 1) {
    const OperatorRow& row = kOperators[static_cast<size_t>(__builtin_ctz(candidates))];
    size_t length = detail::MatchRow(row, text);
    if (length == 0) continue;
    if (row.word && isNameChar(text[length])) return nullptr;  // part of a name
    return &row;
  }
  return nullptr;
}

// Binary level of an operator token, 0 for none: 1 OR/XOR, 2 AND, 3 NOT,
// 4 the relations, 5 "+" and "-", 6 "*", "/", MOD, SHL, SHR.
constexpr int BinaryLevel(int token) {
  switch (token) {
    case TOK_OR: case TOK_XOR: return 1;
    case TOK_AND: return 2;
    case TOK_NOT: return 3;
    case TOK_EQ: case TOK_NE: case TOK_LT: case TOK_LE: case TOK_GT: case TOK_GE: return 4;
    case TOK_PLUS: case TOK_MINUS: return 5;
    case TOK_MUL: case TOK_DIV: case TOK_MOD: case TOK_SHL: case TOK_SHR: return 6;
    default: return 0;
  }
}

// A binary operator on two known values, wrapping modulo 2^32; relations
// give 1 or 0, shifts use the low five bits of the count, and NOT drops its
// left operand. False, with `result` untouched, for a zero divisor.
constexpr bool ApplyBinaryOperator(int op, int32_t left, int32_t right, int32_t& result) {
  uint32_t a = static_cast<uint32_t>(left);
  uint32_t b = static_cast<uint32_t>(right);
  uint32_t r = 0;
  switch (op) {
    case TOK_OR: r = a | b; break;
    case TOK_XOR: r = a ^ b; break;
    case TOK_AND: r = a & b; break;
    case TOK_NOT: r = ~b; break;
    case TOK_EQ: r = left == right; break;
    case TOK_NE: r = left != right; break;
    case TOK_LT: r = left < right; break;
    case TOK_LE: r = left <= right; break;
    case TOK_GT: r = left > right; break;
    case TOK_GE: r = left >= right; break;
    case TOK_PLUS: r = a + b; break;
    case TOK_MINUS: r = a - b; break;
    case TOK_MUL: r = a * b; break;
    case TOK_SHL: r = a << (b & 31); break;
    case TOK_SHR: r = static_cast<uint32_t>(left >> (b & 31)); break;
    case TOK_DIV:
    case TOK_MOD:
      if (right == 0) return false;
      // The one quotient that does not fit wraps; its remainder is 0.
      if (right == -1) r = op == TOK_DIV ? 0u - a : 0u;
      else r = static_cast<uint32_t>(op == TOK_DIV ? left / right : left % right);
      break;
    default: break;
  }
  result = static_cast<int32_t>(r);
  return true;
}

// A prefix operator (HIGH, LOW, NOT, unary minus) on a known value.
constexpr int32_t ApplyPrefixOperator(int op, int32_t value) {
  auto v = static_cast<uint32_t>(value);
  switch (op) {
    case TOK_HIGH: return static_cast<int32_t>((v >> 8) & 0xFF);
    case TOK_LOW: return static_cast<int32_t>(v & 0xFF);
    case TOK_NOT: return static_cast<int32_t>(~v);
    default: return static_cast<int32_t>(0u - v);
  }
}

// Upper-case hexadecimal with no prefix, suffix or leading zeros: how
// expression text and object records write every number. The digits are
// written into `buffer`, whose view is returned.
inline std::string_view HexDigits(uint32_t value, char (&buffer)[8]) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  size_t at = sizeof buffer;
  do {
    buffer[--at] = kDigits[value & 15];
    value >>= 4;
  } while (value != 0);
  return std::string_view(buffer + at, sizeof buffer - at);
}

inline void AppendHexText(std::string& text, uint32_t value) {
  char buffer[8];
  text.append(HexDigits(value, buffer));
}

inline std::string HexText(uint32_t value) {
  std::string text;
  AppendHexText(text, value);
  return text;
}

}  // namespace ta51
