// The rules of relocatable placement as pure functions of addresses, so that
// they can be tested alone: where a part may start, how the parts of a
// joined segment follow each other, and where a segment fits in a free range.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "linker/link_types.h"

namespace ta51::linker {

// One module's part of a segment: its rule and its size.
struct GroupPart {
  PlacementRule rule;
  uint32_t size = 0;
};

// The lowest start at or above `at` that `rule` allows for `size` units.
std::optional<uint64_t> NextAllowed(const PlacementRule& rule, uint64_t at, uint64_t size);
// The highest start at or below `at` that `rule` allows for `size` units.
std::optional<uint64_t> PrevAllowed(const PlacementRule& rule, uint64_t at, uint64_t size);

// The units the parts take together: their sum, or the largest for COMMON.
uint64_t TotalSize(const std::vector<GroupPart>& parts, bool common);

// Lays the parts out from `base`, each at the first address its rule allows
// after the part before (all at `base` for COMMON); the end, or nothing when
// a rule cannot be met. `bases` gets the start of each part.
std::optional<uint64_t> LayOut(const std::vector<GroupPart>& parts, bool common, uint64_t base,
                               std::vector<uint32_t>& bases);

// The lowest or highest place for the parts inside `free`; the range they
// take, with `bases` set.
std::optional<Range> FitLow(const std::vector<GroupPart>& parts, bool common, Range free, std::vector<uint32_t>& bases);
std::optional<Range> FitHigh(const std::vector<GroupPart>& parts, bool common, Range free,
                             std::vector<uint32_t>& bases);

}  // namespace ta51::linker
