// The statements that a compiler's output uses to hand its own debug
// information to the assembler.
#pragma once

#include <span>

#include "core/assembler.h"
#include "core/keyword_tables.h"

namespace ta51 {

// __SFILE name: the source file of the lines that follow.
int SourceFileDirective(Assembler& as);
// __SLINE expression: the source line of the code that follows.
int SourceLineDirective(Assembler& as);
// __DEBUG: ready-made debug records up to __DEBUGEND, copied to the module
// with their expressions worked out. The source ends with the block.
int DebugBlockDirective(Assembler& as);
// The words that lead lines of a __DEBUG block, for tools that list the
// words of the language.
std::span<const KeywordRow> DebugBlockWords();

}  // namespace ta51
