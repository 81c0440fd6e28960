// The state of the C-style preprocessor: the #define table, the block state
// of #if and its kin, and the buffers that expansion reuses from line to
// line. The Assembler owns one CStyleProcessor for the whole run; it is never
// reset between the passes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ta51 {

// One #define. A replaced record is simply overwritten.
struct CMacro {
  std::string Name;
  std::string Body;  // the text to put in, without its line end
  // Empty for a macro without parameters, `#define F() x` included.
  std::vector<std::string> Parameters;
  // Painted ranges of the line being expanded that the scan is inside, at
  // every level: while it is above 0 the name is not replaced.
  mutable int32_t Painted = 0;
};

// FNV-1a over the bytes of a name; the expander computes it while it reads a
// word, for the name filter.
constexpr uint32_t kNameHashSeed = 2166136261u;
constexpr uint32_t NameHashStep(uint32_t hash, char c) {
  return (hash ^ static_cast<unsigned char>(c)) * 16777619u;
}
constexpr uint32_t NameHash(std::string_view name) {
  uint32_t hash = kNameHashSeed;
  for (char c : name) hash = NameHashStep(hash, c);
  return hash;
}

struct CMacroNameHash {
  using is_transparent = void;
  size_t operator()(std::string_view name) const { return NameHash(name); }
};

// A piece of a replacement painted with `macro`: the name is not replaced
// inside it. Positions count the characters still pending, so that they
// stay put while text in front is consumed and replaced: the piece holds the
// characters that stand at the front while stop < Pending.size() <= begin.
struct CPaintRange {
  const CMacro* macro;
  size_t begin;
  size_t stop;
  bool active;  // the scan has reached the piece and counted it in Painted
};

// The working storage of expanding one line, reused from line to line.
// `Pending` holds the text still to scan in reverse, so that a replacement
// is pushed in front of the rest in time proportional to its own length.
struct CExpansionWork {
  std::string Out;
  std::string Pending;
  // Innermost and nearest on top; the stops never fall from bottom to top.
  std::vector<CPaintRange> Ranges;
  std::vector<std::string> Arguments;
  // A body with its arguments put in, and the copy being made of it; the
  // paints say per character whether it came from the body (1) or from an
  // argument (0), which is text of the caller and not painted.
  std::string Body, Scratch;
  std::string BodyPaint, ScratchPaint;
};

struct CStyleProcessor {
  std::unordered_map<std::string, CMacro, CMacroNameHash, std::equal_to<>> Macros;
  // One bit per value of the low 16 bits of NameHash of every defined name:
  // most words of a line are dismissed without a look-up in the table.
  std::array<uint64_t, 1024> NameFilter{};

  // Block state: 0 no block open, 1 in an assembled section, 2 in a dropped
  // section that a later #elif or #else may end, 3 in a dropped section
  // behind an assembled one.
  int32_t DirectiveState = 0;
  int32_t ActiveDepth = 0;  // open blocks of assembled sections
  int32_t SkipDepth = 0;    // blocks opened inside a dropped section
  // Where the outermost open block began, for the report at the end.
  uint32_t OpenedAtLine = 0;
  std::string OpenedInFile;
  std::string OpenedText;

  // Where each #endif that closed the outermost block stood in the first
  // pass: file, line, segment and location. The second pass must meet it at
  // one of these places, else it assembled other code before it.
  std::unordered_set<std::string> FirstPassPlaces;

  // A /* of a directive line that did not close there; the reader drops
  // lines up to its */.
  bool CommentOpen = false;
  // The stage acts from the start of the first pass on; the look at the
  // first line for sequence numbers comes earlier and must change nothing.
  bool Running = false;
  // Characters that replacements put into the lines of the running pass.
  uint64_t PassCharacters = 0;

  CExpansionWork Work;

  // The stage must look at every line: macros to expand or a dropped section.
  bool Engaged() const { return !Macros.empty() || DirectiveState >= 2; }

  bool MayBeDefined(uint32_t hash) const { return (NameFilter[(hash >> 6) & 1023] >> (hash & 63)) & 1; }
  void MarkDefined(uint32_t hash) { NameFilter[(hash >> 6) & 1023] |= uint64_t{1} << (hash & 63); }
};

}  // namespace ta51
