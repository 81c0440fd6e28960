// Tokens of expressions, shared by the evaluator and its tokenizer.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "symbols/expression_text.h"

namespace ta51 {

// An operator as the linker text writes it: its first spelling, and a word
// with a blank on either side.
std::string_view OperatorText(int code);

// The operators of expressions, for tools that list the words of the language.
std::span<const OperatorRow> OperatorTable();

}  // namespace ta51
