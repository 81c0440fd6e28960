// Tokens of expressions, shared by the evaluator and its tokenizer.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ta51 {

// An operator as the linker text writes it: its first spelling, and a word
// with a blank on either side.
std::string_view OperatorText(int code);

struct OperatorRow {
  std::string_view spelling;
  int code;
  bool word;  // matched with case ignored, and only if no name character follows
  std::string_view text;  // in linker text: a word stands between blanks
};
// The operators of expressions, for tools that list the words of the language.
std::span<const OperatorRow> OperatorTable();

}  // namespace ta51
