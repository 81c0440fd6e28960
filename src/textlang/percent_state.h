// The state of the percent macro language of the .a51 dialect: the defined
// macros, the running expansions and the %IF filter. The Assembler owns one
// PercentMacroEngine; FromSourceFile and its saved copy are run state of the
// Assembler and of the line reader.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "textlang/macro_state.h"

namespace ta51 {

// The bounds of the MACRO language serve the percent language too.
constexpr int32_t kPercentDepthLimit = kMacroDepthLimit;     // expansions running at once
constexpr int64_t kPercentLineLimit = kMacroBodyLineLimit;   // body lines taken in one pass
constexpr size_t kPercentLineLength = kMacroLineLimit;       // characters of a rewritten line
// Replacements in one body line; a rewrite that needs more never ends.
constexpr int32_t kPercentReplacementLimit = 4096;

struct PercentMacro {
  std::string name;
  // One text per source line, each with its new line except the last.
  std::vector<std::string> body;
  std::vector<std::string> locals;
  std::vector<std::string> parameters;
  // "%" and the name, as a body line writes each local and parameter.
  std::vector<std::string> localForms;
  std::vector<std::string> parameterForms;
};

// One running expansion. Frames are kept when an expansion ends, so that a
// later one at the same depth reuses their buffers.
struct PercentFrame {
  const PercentMacro* macro = nullptr;
  size_t next = 0;  // index of the next body line
  std::string suffix;                   // of the local names, "%02X"
  std::vector<std::string> localTexts;  // each local with the suffix
  std::vector<std::string> arguments;   // [0, argumentCount) are this call's
  size_t argumentCount = 0;
  // The %IF filter as the call found it; what the body opens is its own.
  size_t ifBase = 0;
  int32_t ifEntryState = 0;
  size_t openIfLine = 0;  // body line of the outermost %IF the body opened
  uint32_t callLine = 0;  // LineNumber of the call, for messages
};

struct PercentMacroEngine {
  // Macro names compare by bytes, case kept. Each definition of the first
  // pass stays in Definitions, in source order, to the end of the run; the
  // second pass meets the same definitions in the same order and makes each
  // current again, so that a call sees the definition in front of it. A
  // definition met again as it stands shares the stored macro.
  std::unordered_map<std::string, const PercentMacro*> Macros;
  std::vector<std::unique_ptr<PercentMacro>> Stored;
  std::vector<const PercentMacro*> Definitions;
  size_t Replayed = 0;  // definitions met so far in the second pass
  std::string Key;      // reused for the look-up of a called name

  // Frames [0, Depth) run; the last delivers. Frames below Floor wait for
  // the MACRO call or INCLUDE that one of their lines started.
  std::vector<PercentFrame> Frames;
  int32_t Depth = 0;
  int32_t Floor = 0;
  // Depth of the frame that delivered the current line, 0 if it has ended.
  int32_t LineFrame = 0;

  // The %IF filter: 0 none open, 1 assembling, 2 false section looking for
  // ELSE and FI, 3 dropping up to the matching FI.
  int32_t PercentIfState = 0;
  std::vector<int32_t> PercentStateStack;
  int32_t PercentInstanceCounter = 0;

  // Body lines taken in this pass; past the bound no expansion runs.
  int64_t BodyLines = 0;
  bool Exhausted = false;
  std::string PercentTextBuffer;  // the line being rewritten

  // A pass starts with nothing running and the whole budget of lines.
  void StartPass() {
    Depth = Floor = LineFrame = 0;
    PercentIfState = 0;
    PercentStateStack.clear();
    Replayed = 0;
    BodyLines = 0;
    Exhausted = false;
  }
};

}  // namespace ta51
