// The constant expressions of #if and #elif: a language of its own, apart
// from the operand expressions. Values are signed 32-bit and wrap; the only
// names are C-style macros, which are expanded first, and `defined`.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

// One evaluator serves one #if or #elif and is dropped afterwards.
class CConstExpr {
 public:
  explicit CConstExpr(Assembler& as) : as_(as) {}

  // The value of `expression`; `directive` ("#if", "#elif") names it in
  // reports. A failed expression reports once and gives the value in hand.
  int32_t Evaluate(std::string_view expression, std::string_view directive);

 private:
  struct Abandon {};  // thrown past every level when nesting runs too deep

  int32_t Conditional();
  int32_t LogicalOr();
  int32_t LogicalAnd();
  int32_t BitOr();
  int32_t BitXor();
  int32_t BitAnd();
  int32_t Equality();
  int32_t Relational();
  int32_t Shift();
  int32_t Additive();
  int32_t Multiplicative();
  int32_t Unary();
  int32_t Defined();
  int32_t Number();
  int32_t CharacterConstant();
  uint32_t Escape();

  void SkipSpace();
  char Peek(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
  // Takes the operator `op` unless the character behind it is `unless`.
  bool TakeOperator(std::string_view op, char unless = '\0');
  void Report(int number, std::string_view detail, bool onlyIfEvaluated = false);
  void Enter();

  Assembler& as_;
  std::string text_;
  std::string_view directive_;
  size_t at_ = 0;
  int depth_ = 0;
  int unevaluated_ = 0;  // inside the arm that && || ?: do not take
  bool reported_ = false;
};

}  // namespace ta51
