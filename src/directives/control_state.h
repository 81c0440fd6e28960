// The run state of the control statements. The variables of
// $SET and $RESET are ordinary T_SET symbols of the symbol table, so that
// $IF and every other expression read them; only the stack of $SAVE lives
// here.
#pragma once

#include <cstdint>
#include <vector>

namespace ta51 {

struct ControlState {
  // Stored values of LIST, lock bit included, pushed by $SAVE and popped by
  // $RESTORE. It lasts over both passes: a $SAVE that the first pass left
  // unmatched stays at the bottom.
  std::vector<uint32_t> ListStack;
};

}  // namespace ta51
