// The MACRO language, as the line reader, the dispatcher and the tests see it.
// The statement handlers MacroStatement and MacroCall and the rewrite
// SubstituteParameters are declared in textlang.h.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/assembler.h"

namespace ta51 {

// The next body line of the running call into `text`, new line included;
// false at the end of the body (or while a call chain past the depth bound
// unwinds).
bool NextMacroBodyLine(Assembler& as, std::string& text);

// The text of positional argument `symbol` (a digit or a letter, either
// case) of the running call; empty if the call has no such argument.
std::string_view ArgumentText(const Assembler& as, char symbol);

// --- Definitions -------------------------------------------------------------

// Whether the current line closes a definition: white space first, then the
// terminator as the first word, case ignored. The reader of the first pass
// and the walk of the second use this one test, so that both passes end a
// definition at the same line.
bool ClosesDefinition(const Assembler& as, const char* terminator);

enum class DefinitionLine { Stored, Closes, Nests };
// Takes the current line into the body of `macro`: a comment line only when
// comments are kept. Closes: the terminator, not stored. Nests: a MACR or
// MACRO statement, stored; the definition ends there.
DefinitionLine TakeDefinitionLine(Assembler& as, SymbolEntry& macro, const char* terminator);

// Parameter names of a named definition from `from` on: each starts with a
// character that can begin a name and runs on over name characters;
// anything else is passed over, up to a new line or `;`.
std::vector<std::string> ReadParameterList(const std::string& text, size_t from);

// --- Calls -------------------------------------------------------------------

// Reads the arguments of a call of `macro` from the read offset, into a new
// frame that is not yet current, and sets NARG. The read offset and
// CommentOffset are left at the end of the arguments, for the listing.
// False after a report: the call is abandoned.
bool BeginMacroCall(Assembler& as, const SymbolEntry& macro, bool named);
// Make the frame of BeginMacroCall current and the line reader serve its
// body; and give back the caller's state when the body has ended.
void EnterMacroBody(Assembler& as);
void LeaveMacroBody(Assembler& as);

}  // namespace ta51
