#include "target/operands.h"

namespace ta51 {

const std::string_view LastOperandEnd = "; \t\n";
const std::string_view InnerOperandEnd = "; \t\n,";
const std::string_view CommaOrBlank = ", ";
const std::string_view PlusOrBlank = "+ ";

bool IsBitAddressable(uint32_t) { return false; }

}  // namespace ta51
