// The levels of #if expressions, from the loosest binding to the tightest:
// ?:, ||, &&, |, ^, &, == !=, < > <= >=, << >>, + -, * / %, and the unary
// operators with the primary. Binary levels associate to the left.
#include "textlang/cconst_expr.h"

#include <climits>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "textlang/cstyle.h"
#include "textlang/cstyle_words.h"

namespace ta51 {

namespace {

// Parentheses, unary operators and ?: nest at most this deep.
constexpr int kNestingLimit = 256;

int32_t Wrap(uint32_t value) { return static_cast<int32_t>(value); }
uint32_t Bits(int32_t value) { return static_cast<uint32_t>(value); }

bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' || c == '_'; }
bool IsNameChar(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '$' || c == '@' || c == '~';
}
int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

int32_t CConstExpr::Evaluate(std::string_view expression, std::string_view directive) {
  directive_ = directive;
  text_.assign(expression);
  if (!ExpandCMacros(as_, text_, true)) return 0;
  at_ = 0;
  SkipSpace();
  if (at_ == text_.size()) {
    Report(11, std::string(directive_) + " needs an expression");
    return 0;
  }
  int32_t value = 0;
  try {
    value = Conditional();
  } catch (const Abandon&) {
    return 0;
  }
  if (at_ < text_.size())
    Report(11, "unexpected text in " + std::string(directive_) + " expression: " + text_.substr(at_, 20));
  return value;
}

void CConstExpr::SkipSpace() {
  while (at_ < text_.size() && IsWhiteSpace(text_[at_])) ++at_;
}

bool CConstExpr::TakeOperator(std::string_view op, char unless) {
  if (text_.compare(at_, op.size(), op) != 0) return false;
  if (unless != '\0' && Peek(op.size()) == unless) return false;
  at_ += op.size();
  return true;
}

void CConstExpr::Report(int number, std::string_view detail, bool onlyIfEvaluated) {
  if (reported_ || (onlyIfEvaluated && unevaluated_ > 0)) return;
  reported_ = true;
  as_.Line.offset = 0;
  ReportError(as_, number, true, detail);
}

void CConstExpr::Enter() {
  if (++depth_ <= kNestingLimit) return;
  Report(6, std::string(directive_) + " expression nests more than 256 deep");
  throw Abandon{};
}

int32_t CConstExpr::Conditional() {
  Enter();
  int32_t condition = LogicalOr();
  if (!TakeOperator("?")) {
    --depth_;
    return condition;
  }
  unevaluated_ += condition == 0;
  int32_t chosen = Conditional();
  unevaluated_ -= condition == 0;
  if (!TakeOperator(":")) {
    Report(11, "':' expected in " + std::string(directive_) + " expression");
    --depth_;
    return chosen;
  }
  unevaluated_ += condition != 0;
  int32_t other = Conditional();
  unevaluated_ -= condition != 0;
  --depth_;
  return condition != 0 ? chosen : other;
}

int32_t CConstExpr::LogicalOr() {
  int32_t value = LogicalAnd();
  while (TakeOperator("||")) {
    unevaluated_ += value != 0;
    int32_t right = LogicalAnd();
    unevaluated_ -= value != 0;
    value = (value != 0 || right != 0) ? 1 : 0;
  }
  return value;
}

int32_t CConstExpr::LogicalAnd() {
  int32_t value = BitOr();
  while (TakeOperator("&&")) {
    unevaluated_ += value == 0;
    int32_t right = BitOr();
    unevaluated_ -= value == 0;
    value = (value != 0 && right != 0) ? 1 : 0;
  }
  return value;
}

int32_t CConstExpr::BitOr() {
  int32_t value = BitXor();
  while (TakeOperator("|", '|')) value = Wrap(Bits(value) | Bits(BitXor()));
  return value;
}

int32_t CConstExpr::BitXor() {
  int32_t value = BitAnd();
  while (TakeOperator("^")) value = Wrap(Bits(value) ^ Bits(BitAnd()));
  return value;
}

int32_t CConstExpr::BitAnd() {
  int32_t value = Equality();
  while (TakeOperator("&", '&')) value = Wrap(Bits(value) & Bits(Equality()));
  return value;
}

int32_t CConstExpr::Equality() {
  int32_t value = Relational();
  while (true) {
    if (TakeOperator("=="))
      value = value == Relational() ? 1 : 0;
    else if (TakeOperator("!="))
      value = value != Relational() ? 1 : 0;
    else
      return value;
  }
}

int32_t CConstExpr::Relational() {
  int32_t value = Shift();
  while (true) {
    if (TakeOperator("<="))
      value = value <= Shift() ? 1 : 0;
    else if (TakeOperator(">="))
      value = value >= Shift() ? 1 : 0;
    else if (TakeOperator("<", '<'))
      value = value < Shift() ? 1 : 0;
    else if (TakeOperator(">", '>'))
      value = value > Shift() ? 1 : 0;
    else
      return value;
  }
}

int32_t CConstExpr::Shift() {
  int32_t value = Additive();
  while (true) {
    if (TakeOperator("<<"))
      value = Wrap(Bits(value) << (Bits(Additive()) & 31));
    else if (TakeOperator(">>"))
      value = value >> (Bits(Additive()) & 31);  // arithmetic
    else
      return value;
  }
}

int32_t CConstExpr::Additive() {
  int32_t value = Multiplicative();
  while (true) {
    if (TakeOperator("+"))
      value = Wrap(Bits(value) + Bits(Multiplicative()));
    else if (TakeOperator("-"))
      value = Wrap(Bits(value) - Bits(Multiplicative()));
    else
      return value;
  }
}

int32_t CConstExpr::Multiplicative() {
  int32_t value = Unary();
  while (true) {
    char op = Peek();
    if (op != '*' && op != '/' && op != '%') return value;
    ++at_;
    int32_t right = Unary();
    if (op == '*') {
      value = Wrap(Bits(value) * Bits(right));
    } else if (right == 0) {
      Report(64, std::string(directive_) + " expression", true);
      value = 0;
    } else if (value == INT32_MIN && right == -1) {
      value = op == '/' ? INT32_MIN : 0;  // wraps, as every other operation
    } else {
      value = op == '/' ? value / right : value % right;
    }
  }
}

// A primary with the unary operators in front of it, and the blanks behind.
int32_t CConstExpr::Unary() {
  Enter();
  SkipSpace();
  char c = Peek();
  int32_t value = 0;
  if (IsNameStart(c)) {
    size_t start = at_;
    while (IsNameChar(Peek())) ++at_;
    // Any name that expansion left is no macro and counts 0, as in C.
    if (std::string_view(text_).substr(start, at_ - start) == kCDefinedOperator) value = Defined();
  } else if (c == '!' || c == '~' || c == '-' || c == '+') {
    ++at_;
    int32_t operand = Unary();
    value = c == '!' ? (operand == 0 ? 1 : 0) : c == '~' ? Wrap(~Bits(operand)) : c == '-' ? Wrap(0u - Bits(operand)) : operand;
  } else if (c == '(') {
    ++at_;
    value = Conditional();
    if (Peek() == ')')
      ++at_;
    else
      Report(5, std::string(directive_) + " expression");
  } else if (c >= '0' && c <= '9') {
    value = Number();
  } else if (c == '\'') {
    value = CharacterConstant();
  } else {
    Report(11, "operand expected in " + std::string(directive_) + " expression");
  }
  SkipSpace();
  --depth_;
  return value;
}

// `defined NAME` or `defined ( NAME )`: 1 if a macro of that name stands.
int32_t CConstExpr::Defined() {
  SkipSpace();
  bool parenthesis = Peek() == '(';
  if (parenthesis) {
    ++at_;
    SkipSpace();
  }
  size_t start = at_;
  while (IsNameChar(Peek())) ++at_;
  if (at_ == start || !IsNameStart(text_[start])) {
    Report(11, "defined needs a name");
    return 0;
  }
  bool found = FindCMacro(as_, std::string_view(text_).substr(start, at_ - start)) != nullptr;
  if (parenthesis) {
    SkipSpace();
    if (Peek() == ')')
      ++at_;
    else
      Report(5, "defined");
  }
  return found ? 1 : 0;
}

// Decimal digits, or 0x and hexadecimal digits; a C suffix (U, L) is
// passed over.
int32_t CConstExpr::Number() {
  uint32_t value = 0;
  if (Peek() == '0' && (Peek(1) == 'x' || Peek(1) == 'X')) {
    at_ += 2;
    for (int digit; (digit = HexDigit(Peek())) >= 0; ++at_) value = value * 16 + static_cast<uint32_t>(digit);
  } else {
    for (; Peek() >= '0' && Peek() <= '9'; ++at_) value = value * 10 + static_cast<uint32_t>(Peek() - '0');
  }
  while (Peek() == 'u' || Peek() == 'U' || Peek() == 'l' || Peek() == 'L') ++at_;
  return Wrap(value);
}

// 'A' is 65. Characters are unsigned bytes, and several characters pack into
// one value, the first one highest.
int32_t CConstExpr::CharacterConstant() {
  ++at_;
  uint32_t value = 0;
  int count = 0;
  while (Peek() != '\'') {
    if (Peek() == '\0' || Peek() == '\n') {
      Report(11, "character constant not closed");
      return Wrap(value);
    }
    uint32_t byte = Peek() == '\\' ? Escape() : static_cast<unsigned char>(text_[at_++]);
    value = (value << 8) | (byte & 0xFF);
    ++count;
  }
  ++at_;
  if (count == 0) Report(11, "empty character constant");
  return Wrap(value);
}

uint32_t CConstExpr::Escape() {
  ++at_;
  char c = Peek();
  if (c == '\0' || c == '\n') return '\\';  // the constant is not closed either
  ++at_;
  switch (c) {
    case 'n': return '\n';
    case 't': return '\t';
    case 'r': return '\r';
    case 'a': return '\a';
    case 'b': return '\b';
    case 'f': return '\f';
    case 'v': return '\v';
    case 'x': {
      uint32_t value = 0;
      for (int digit; (digit = HexDigit(Peek())) >= 0; ++at_) value = value * 16 + static_cast<uint32_t>(digit);
      return value;
    }
    default: break;
  }
  if (c >= '0' && c <= '7') {
    uint32_t value = static_cast<uint32_t>(c - '0');
    for (int n = 1; n < 3 && Peek() >= '0' && Peek() <= '7'; ++n, ++at_) value = value * 8 + static_cast<uint32_t>(Peek() - '0');
    return value;
  }
  return static_cast<unsigned char>(c);  // \\ \' \" \? and any other
}

}  // namespace ta51
