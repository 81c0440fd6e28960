// The percent macro language of the .a51 dialect, as the line reader, the
// dispatcher and the expression evaluator see it. PercentKeyword and
// TryPercentCall, the statement handlers, are declared in textlang.h.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

// Whether FetchLine has lines of a running expansion to serve: one test.
inline bool PercentExpansionRunning(const Assembler& as) { return as.Percent.Depth > as.Percent.Floor; }

// The next line of the running expansions into `text`, ending in a new
// line. False when they ended without one; the caller reads on from the
// macro body or the file. A bound that a line breaks is reported here, and
// the line given is then an empty one that is not listed.
bool NextPercentLine(Assembler& as, std::string& text);

// Ends the expansions above `depth` at once, giving back the %IF filter as
// the lowest of them found it.
void EndPercentExpansions(Assembler& as, int32_t depth);

// True in the false sections of the %IF filter, where file lines are dropped.
inline bool SkippingPercentLines(const Assembler& as) { return as.Percent.PercentIfState >= 2; }

// The driver calls it between the passes: both give the same local names.
void ResetPercentInstances(Assembler& as);

// %*DEFINE: reads the definition, and stores it (first pass) or makes the
// stored one current again (second pass). The closing line stays the
// current line, to be listed as plain text.
int DefinePercentMacro(Assembler& as);

// At a primary of an expression: the code of the function whose name stands
// behind `%` (after blanks), with the read offset behind the name; 0 with
// the read offset unchanged when none stands there.
int ReadPercentFunctionName(Assembler& as);
// Only a `%` right at the read offset counts: behind a blank the primary's
// scan takes `%` for the prefix of a binary number.
inline int PercentFunctionCode(Assembler& as) {
  return as.Line.Peek() == '%' ? ReadPercentFunctionName(as) : 0;  // one look
}
// The value of the function, reading its operands; the read offset is left
// behind its closing parenthesis.
int32_t PercentFunction(Assembler& as, int code);
// Order of two texts: negative, 0 or positive, bytes unsigned, the shorter
// first where one begins the other.
int PercentCompare(std::string_view first, std::string_view second);

// Words of the percent language that no keyword table holds.
constexpr std::array<std::string_view, 5> kPercentLanguageWords = {"LOCAL", "THEN", "ELSE", "FI", "%'"};

// A MACRO call or an INCLUDE runs a nested pass. The percent expansions
// running when it starts wait until it ends, and the lines of the nested
// pass count as their own source says.
class PercentFloorGuard {
 public:
  explicit PercentFloorGuard(Assembler& as);
  ~PercentFloorGuard();
  PercentFloorGuard(const PercentFloorGuard&) = delete;
  PercentFloorGuard& operator=(const PercentFloorGuard&) = delete;

 private:
  Assembler& as_;
  int32_t floor_, lineFrame_;
  bool fromSourceFile_, savedValid_, saved_;
};

}  // namespace ta51
