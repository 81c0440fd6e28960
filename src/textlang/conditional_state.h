// The run state of conditional assembly: the open blocks of the
// IF family and of the $IF family. Nothing else is kept between lines; a
// false section is consumed by the statement that made it false.
#pragma once

#include <cstdint>

namespace ta51 {

struct ConditionalState {
  // Open IF-family blocks; every IF that got past its operands counts,
  // whatever its value, and ENDC takes one off (ConditionalDepth).
  int32_t Depth = 0;
  // Open $IF blocks; $ENDIF takes one off (ControlConditionalDepth).
  int32_t ControlDepth = 0;

  void Reset() { Depth = ControlDepth = 0; }
};

}  // namespace ta51
