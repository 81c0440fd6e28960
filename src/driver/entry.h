// The single entry point of a run: arguments in, exit status out.
#pragma once

#include <string>
#include <vector>

#include "core/assembler.h"

namespace ta51 {

// Runs one assembly over the arguments (without the program name) and
// returns the exit status: 0, 1 or 2.
// What a test or fuzzer asks a run to check besides its own work.
struct RunChecks {
  // The second pass reads every instruction and EQU again and stops the run
  // (abort) if the first pass recorded it for reuse with other bytes, another
  // value or another cursor.
  bool reusedInstructions = false;
};

int RunAssembler(const std::vector<std::string>& arguments, Console console = Console{}, RunChecks checks = {});

}  // namespace ta51
