// The operator table of expressions and the tokenizer that reads it.
#include "symbols/tokens.h"

#include <array>
#include <string_view>

#include "symbols/expression.h"
#include "symbols/symbols.h"

namespace ta51 {

namespace {

// Searched in this order: the longer "<>", "<=" and ">=" come before "<" and ">".
constexpr std::array<OperatorRow, 27> kOperators = {{
    {"HIGH", TOK_HIGH, true},
    {"LOW", TOK_LOW, true},
    {"`BASE", TOK_BASE, true},
    {"`SIZE", TOK_SIZE, true},
    {"MOD", TOK_MOD, true},
    {"SHL", TOK_SHL, true},
    {"SHR", TOK_SHR, true},
    {"EQ", TOK_EQ, true},
    {"NE", TOK_NE, true},
    {"LT", TOK_LT, true},
    {"LE", TOK_LE, true},
    {"GT", TOK_GT, true},
    {"GE", TOK_GE, true},
    {"NOT", TOK_NOT, true},
    {"AND", TOK_AND, true},
    {"OR", TOK_OR, true},
    {"XOR", TOK_XOR, true},
    {"*", TOK_MUL, false},
    {"/", TOK_DIV, false},
    {"+", TOK_PLUS, false},
    {"-", TOK_MINUS, false},
    {"=", TOK_EQ, false},
    {"<>", TOK_NE, false},
    {"<=", TOK_LE, false},
    {">=", TOK_GE, false},
    {"<", TOK_LT, false},
    {">", TOK_GT, false},
}};

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

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

std::string OperatorText(int code) {
  for (const OperatorRow& row : kOperators) {
    if (row.code != code) continue;
    if (!row.word) return std::string(row.spelling);
    return std::string(1, ' ').append(row.spelling).append(1, ' ');
  }
  return {};
}

int ScanToken(Assembler& as, bool skipBlanks) {
  LineCursor& line = as.Line;
  if (skipBlanks) {
    while (line.Peek() == ' ' || line.Peek() == '\t') ++line.offset;
    // Macro parameter substitution (SubstituteParameters) plugs in here: when
    // blanks were passed inside a macro expansion and ExprToken is not ';'.
  }
  const char* text = line.Here();
  for (const OperatorRow& row : kOperators) {
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
