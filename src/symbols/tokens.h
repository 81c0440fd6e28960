// Tokens of expressions, shared by the evaluator and its tokenizer.
#pragma once

#include <string>
#include <string_view>

namespace ta51 {

// An operator as the linker text writes it: its first spelling, and a word
// with a blank on either side.
std::string_view OperatorText(int code);

}  // namespace ta51
