// The map of a link.
#pragma once

#include <cstdio>
#include <string>

#include "linker/linker.h"

namespace ta51::linker {

// Modules, segments, publics by name and by address, free ranges, call
// targets and, where modules carry them, source lines.
void WriteMap(Linker& linker, FILE* stream, const std::string& output);

}  // namespace ta51::linker
