// The operator table of expressions and the tokenizer that reads it.
#include "symbols/tokens.h"

#include <array>
#include <string_view>

#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

// Searched in this order: the longer "<>", "<=" and ">=" come before "<" and ">".
constexpr std::array<OperatorRow, 27> kOperators = {{
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

constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

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
constexpr std::array<uint32_t, 256> kFirstCharacterRows = MakeFirstCharacterRows();
static_assert(kOperators.size() <= 32);

// Length of the operator row's spelling at `text`, or 0 if it is not there.
size_t MatchRow(const OperatorRow& row, const char* text) {
  for (size_t i = 0; i < row.spelling.size(); ++i) {
    char c = row.word ? Upper(text[i]) : text[i];
    if (c != row.spelling[i]) return 0;
  }
  return row.spelling.size();
}

}  // namespace

std::span<const OperatorRow> OperatorTable() { return kOperators; }

std::string_view OperatorText(int code) {
  for (const OperatorRow& row : kOperators)
    if (row.code == code) return row.text;
  return {};
}

int ScanToken(Assembler& as, bool skipBlanks) {
  LineCursor& line = as.Line;
  if (skipBlanks) {
    int32_t start = line.offset;
    while (line.Peek() == ' ' || line.Peek() == '\t') ++line.offset;
    // A word of a macro body is rewritten when the reader reaches it.
    if (line.offset != start && as.InMacroExpansion && as.ExprToken != ';')
      SubstituteParameters(as, line.offset, true);
  }
  const char* text = line.Here();
  for (uint32_t candidates = kFirstCharacterRows[static_cast<unsigned char>(*text)]; candidates != 0;
       candidates &= candidates - 1) {
    const OperatorRow& row = kOperators[static_cast<size_t>(__builtin_ctz(candidates))];
    size_t length = MatchRow(row, text);
    if (length == 0) continue;
    if (row.word && IsNameChar(text[length])) break;  // part of a name
    line.offset += static_cast<int32_t>(length);
    return as.ExprToken = row.code;
  }
  int token = static_cast<int>(static_cast<signed char>(line.Peek()));
  ++line.offset;
  return as.ExprToken = token;
}

}  // namespace ta51
