// The reader of logical source lines. The driver provides it; the statements
// that read lines of their own (skip scanners, definition readers) use it.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// The next logical line into as.Line, or false at the end of the input.
bool FetchLine(Assembler& as);
// FetchLine with the line counted in LineNumber: a line of the file counts
// (before it is read, so that a report from inside the reader has its
// number), a line of a percent expansion does not. At the end of the input
// the pass loop keeps its count (`keepCountAtEnd`: reports of an open block
// name the line behind the last), the other readers take it back.
bool FetchCountedLine(Assembler& as, bool keepCountAtEnd = false);

}  // namespace ta51
