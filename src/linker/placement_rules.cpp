#include "linker/placement_rules.h"

#include <algorithm>

namespace ta51::linker {

namespace {

// A rule is met after a few rounds of aligning and moving to a window; more
// rounds mean rules that contradict each other.
constexpr int kRounds = 8;

uint64_t AlignUp(uint64_t at, uint64_t align) { return align <= 1 ? at : (at + align - 1) / align * align; }
uint64_t AlignDown(uint64_t at, uint64_t align) { return align <= 1 ? at : at / align * align; }

// A window at a base other than 0 is one window (BITADDRESSABLE: 20H-2FH
// only); at 0 the windows repeat (INPAGE: every page, INBLOCK: every 2K).
bool RepeatingWindows(const PlacementRule& rule) { return rule.windowBase == 0; }

bool Allowed(const PlacementRule& rule, uint64_t at, uint64_t size) {
  if (at % (rule.align == 0 ? 1 : rule.align) != 0) return false;
  if (!rule.HasWindow()) return true;
  if (size > rule.windowSize) return false;
  if (!RepeatingWindows(rule)) return at >= rule.windowBase && at + size <= uint64_t{rule.windowBase} + rule.windowSize;
  return at / rule.windowSize == (at + (size == 0 ? 0 : size - 1)) / rule.windowSize;
}

}  // namespace

std::optional<uint64_t> NextAllowed(const PlacementRule& rule, uint64_t at, uint64_t size) {
  for (int round = 0; round < kRounds; ++round) {
    at = AlignUp(at, rule.align);
    if (Allowed(rule, at, size)) return at;
    if (!rule.HasWindow() || size > rule.windowSize) return std::nullopt;
    if (!RepeatingWindows(rule)) {
      if (at >= rule.windowBase) return std::nullopt;
      at = rule.windowBase;
    } else {
      at = (at / rule.windowSize + 1) * rule.windowSize;
    }
  }
  return std::nullopt;
}

std::optional<uint64_t> PrevAllowed(const PlacementRule& rule, uint64_t at, uint64_t size) {
  for (int round = 0; round < kRounds; ++round) {
    at = AlignDown(at, rule.align);
    if (Allowed(rule, at, size)) return at;
    if (!rule.HasWindow() || size > rule.windowSize) return std::nullopt;
    uint64_t windowEnd = RepeatingWindows(rule) ? (at / rule.windowSize + 1) * rule.windowSize
                                                : uint64_t{rule.windowBase} + rule.windowSize;
    if (!RepeatingWindows(rule) && at < rule.windowBase) return std::nullopt;
    if (at + size <= windowEnd) return std::nullopt;  // aligned yet not allowed: nothing lower helps
    if (windowEnd < size) return std::nullopt;
    at = windowEnd - size;
  }
  return std::nullopt;
}

uint64_t TotalSize(const std::vector<GroupPart>& parts, bool common) {
  uint64_t total = 0;
  for (const GroupPart& part : parts) total = common ? std::max<uint64_t>(total, part.size) : total + part.size;
  return total;
}

std::optional<uint64_t> LayOut(const std::vector<GroupPart>& parts, bool common, uint64_t base,
                               std::vector<uint32_t>& bases) {
  bases.assign(parts.size(), 0);
  uint64_t at = base;
  uint64_t end = base;
  for (size_t i = 0; i < parts.size(); ++i) {
    std::optional<uint64_t> start = NextAllowed(parts[i].rule, common ? base : at, parts[i].size);
    if (!start || (common && *start != base) || *start > 0xFFFFFFFFu) return std::nullopt;
    bases[i] = static_cast<uint32_t>(*start);
    at = *start + parts[i].size;
    end = std::max(end, at);
  }
  return end;
}

// The lowest start at or above `at` that the first part allows, or for
// COMMON every part, since all of them start there.
static std::optional<uint64_t> FirstStart(const std::vector<GroupPart>& parts, bool common, uint64_t at, bool up) {
  size_t count = common ? parts.size() : std::min<size_t>(parts.size(), 1);
  for (int round = 0; round < kRounds; ++round) {
    bool stable = true;
    for (size_t i = 0; i < count; ++i) {
      std::optional<uint64_t> next = up ? NextAllowed(parts[i].rule, at, parts[i].size)
                                        : PrevAllowed(parts[i].rule, at, parts[i].size);
      if (!next) return std::nullopt;
      stable = stable && *next == at;
      at = *next;
    }
    if (stable) return at;
  }
  return std::nullopt;
}

std::optional<Range> FitLow(const std::vector<GroupPart>& parts, bool common, Range free,
                            std::vector<uint32_t>& bases) {
  std::optional<uint64_t> start = FirstStart(parts, common, free.start, true);
  if (!start) return std::nullopt;
  std::optional<uint64_t> end = LayOut(parts, common, *start, bases);
  if (!end || *end > free.end) return std::nullopt;
  return Range{static_cast<uint32_t>(*start), static_cast<uint32_t>(*end)};
}

std::optional<Range> FitHigh(const std::vector<GroupPart>& parts, bool common, Range free,
                             std::vector<uint32_t>& bases) {
  uint64_t total = TotalSize(parts, common);
  if (total > free.Size()) return std::nullopt;
  uint64_t at = free.end - total;
  for (int round = 0; round < kRounds; ++round) {
    std::optional<uint64_t> start = FirstStart(parts, common, at, false);
    if (!start || *start < free.start) return std::nullopt;
    std::optional<uint64_t> end = LayOut(parts, common, *start, bases);
    if (!end) return std::nullopt;
    if (*end <= free.end) return Range{static_cast<uint32_t>(*start), static_cast<uint32_t>(*end)};
    uint64_t over = *end - free.end;
    if (*start < free.start + over) return std::nullopt;
    at = *start - over;
  }
  return std::nullopt;
}

}  // namespace ta51::linker
