// The C-style preprocessor: #define with and without parameters, #undef,
// #include, and #if, #ifdef, #ifndef, #elif, #else, #endif. It acts in the
// line reader on each line read from a file, before anything of the
// assembler proper sees it, in both dialects.
#pragma once

#include <string>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

// Whether the stage has anything to do with the current line: a cheap test,
// so that a plain line costs two branches while no macro is defined.
inline bool CStyleMayAct(const Assembler& as) {
  if (as.CStyle.Engaged()) return true;
  const char* text = as.Line.text.c_str();
  while (*text == ' ' || *text == '\t') ++text;
  return *text == '#';
}

// Runs the stage on the line in as.Line. True: the line is delivered,
// expanded (an active #include comes back as an INCLUDE statement). False:
// the line was a directive, stood in a dropped section or failed with a
// report; it is counted and not delivered. `inComment` is set when a
// directive leaves a /* comment open.
bool RunCStyleStage(Assembler& as, bool& inComment);

// The start of each pass: the stage begins to act. Before the first line of
// the first pass the macros of the command line (/DNAME[=VALUE]) are made;
// the second pass starts with the table as the first left it.
void StartCStylePass(Assembler& as);
// The end of the first pass when the input ran out: a block still open is
// reported.
void FinishCStylePass(Assembler& as);

// Expands the macros in `text` in place. `conditionView` is the view of #if:
// the name behind `defined` stays as written, and `'` quotes as in C. False
// after a report; `text` is then unchanged.
bool ExpandCMacros(Assembler& as, std::string& text, bool conditionView);

// Finds a macro by name.
const CMacro* FindCMacro(const Assembler& as, std::string_view name);

}  // namespace ta51
