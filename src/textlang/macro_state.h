// The state of the MACRO language: the running calls, their
// arguments and generated labels, and the buffers that expansion reuses.
// The Assembler owns one MacroState; the counter of generated labels and the
// flags InMacroExpansion and FromSourceFile are run state of the Assembler.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ta51 {

struct SymbolEntry;

constexpr int kMacroArgumentSlots = 36;         // \0 to \9, \A to \Z
constexpr size_t kMacroArgumentLimit = 99;      // characters of one argument
constexpr size_t kMacroLineLimit = 15360;       // a call line, a rewritten line
constexpr int32_t kGeneratedLabelLimit = 99999;  // last number of a generated label
constexpr int32_t kMacroDepthLimit = 256;        // calls running at once
constexpr int64_t kMacroBodyLineLimit = 1000000;  // body lines served in one pass

// One running call. Frames are kept when a call ends, so that a later call
// at the same depth reuses their buffers.
struct MacroCallFrame {
  // The macro whose body is delivered, and the offset of its next line.
  const SymbolEntry* Macro = nullptr;
  size_t MacroBodyPosition = 0;
  // Private copy of the call's operand field, cut at its comment, ending in
  // a new line. MacroArgumentTable holds the start of each positional
  // argument in it and ArgumentLength the length of its text.
  std::string CallText;
  std::array<int32_t, kMacroArgumentSlots> MacroArgumentTable{};
  std::array<uint8_t, kMacroArgumentSlots> ArgumentLength{};
  // Generated labels: empty, or a point (or `_`) and five digits.
  std::array<std::array<char, 8>, kMacroArgumentSlots> MacroLocalTable{};
  // Arguments of a named call (its list on NamedArgumentStack).
  std::vector<std::string> NamedArguments;
  int32_t ArgumentCount = 0;
  // Set while the body of a named macro runs: the named rules apply.
  const SymbolEntry* RunningNamedMacro = nullptr;
  // What the call changes and gives back when its body ends.
  bool SavedInMacroExpansion = false;
  bool SavedFromSourceFile = true;
  int32_t SavedConditionalDepth = 0;
  int32_t SavedControlConditionalDepth = 0;
};

struct MacroState {
  // Frames [0, Depth) belong to running calls; the last one is current.
  std::vector<MacroCallFrame> Frames;
  int32_t Depth = 0;
  // Whether comment lines of a definition are stored; on at the start of a
  // run, set by each MACRO definition and read by .MACRO.
  bool KeepMacroComments = true;
  // Set when a call passed the depth bound: every running body ends at once.
  bool Unwinding = false;
  // Body lines served in this pass; past the bound no call runs any more.
  int64_t BodyLines = 0;
  bool Exhausted = false;
  // Reused working text of a rewrite, and the backslashes of one word.
  std::string Scratch;
  struct Escape {
    size_t at, end;  // the backslash; behind `\x` or `\.x`
    char symbol;
    bool point;
    bool cut;                      // the form and all behind it go
    std::string_view replacement;  // unless cut; the form itself if kept
  };
  std::vector<Escape> Escapes;

  // A pass starts with no call running and the whole budget of lines.
  void StartPass() {
    Depth = 0;
    Unwinding = false;
    BodyLines = 0;
    Exhausted = false;
  }

  MacroCallFrame* Current() { return Depth > 0 ? &Frames[static_cast<size_t>(Depth) - 1] : nullptr; }
  const MacroCallFrame* Current() const {
    return Depth > 0 ? &Frames[static_cast<size_t>(Depth) - 1] : nullptr;
  }
};

}  // namespace ta51
