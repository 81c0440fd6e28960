// The single entry point of a run: arguments in, exit status out.
#pragma once

#include <string>
#include <vector>

#include "core/assembler.h"

namespace ta51 {

// Runs one assembly over the arguments (without the program name) and
// returns the exit status: 0, 1 or 2.
int RunAssembler(const std::vector<std::string>& arguments, Console console = Console{});

}  // namespace ta51
