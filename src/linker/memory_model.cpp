#include "linker/memory_model.h"

#include <algorithm>

namespace ta51::linker {

namespace {

constexpr uint32_t kBitBytes = 0x20;  // the byte that holds bit address 0
constexpr uint32_t kSfrStart = 0x80;

}  // namespace

MemoryModel::MemoryModel() {
  ramBytes_.fill(-1);
  ramBits_.fill(-1);
  sfrBytes_.fill(-1);
  sfrBits_.fill(-1);
}

int MemoryModel::FindInSet(const RangeSet& set, Range range, Range& overlap) {
  auto next = set.upper_bound(range.start);
  if (next != set.begin()) {
    auto previous = std::prev(next);
    if (previous->second.end > range.start) {
      overlap = {range.start, std::min(range.end, previous->second.end)};
      return previous->second.owner;
    }
  }
  if (next != set.end() && next->first < range.end) {
    overlap = {next->first, std::min(range.end, next->second.end)};
    return next->second.owner;
  }
  return -1;
}

void MemoryModel::OccupyInSet(RangeSet& set, Range range, int owner) {
  uint32_t at = range.start;
  while (at < range.end) {
    Range overlap;
    if (FindInSet(set, {at, range.end}, overlap) < 0) {
      set[at] = {range.end, owner};
      return;
    }
    if (overlap.start > at) set[at] = {overlap.start, owner};
    at = overlap.end;
  }
}

// A unit of the internal RAM and whoever holds it; a byte of 20H-2FH is also
// held by the segment of any of its bits, and a bit by the segment of its byte.
int MemoryModel::RamOwner(Space space, uint32_t unit) const {
  if (space == Space::Bit) {
    if (unit >= kSfrStart) return sfrBits_[unit - kSfrStart];
    if (ramBits_[unit] >= 0) return ramBits_[unit];
    return ramBytes_[kBitBytes + unit / 8];
  }
  if (space == Space::Data && unit >= kSfrStart) return sfrBytes_[unit - kSfrStart];
  if (ramBytes_[unit] >= 0) return ramBytes_[unit];
  if (unit >= kBitBytes && unit < kBitBytes + 16)
    for (uint32_t bit = (unit - kBitBytes) * 8; bit < (unit - kBitBytes) * 8 + 8; ++bit)
      if (ramBits_[bit] >= 0) return ramBits_[bit];
  return -1;
}

void MemoryModel::OccupyRam(Space space, uint32_t unit, int owner) {
  if (RamOwner(space, unit) >= 0) return;
  if (space == Space::Bit)
    (unit >= kSfrStart ? sfrBits_[unit - kSfrStart] : ramBits_[unit]) = owner;
  else if (space == Space::Data && unit >= kSfrStart)
    sfrBytes_[unit - kSfrStart] = owner;
  else
    ramBytes_[unit] = owner;
}

int MemoryModel::FindConflict(Space space, Range range, Range& overlap) const {
  if (space == Space::Code) return FindInSet(code_, range, overlap);
  if (space == Space::Xdata) return FindInSet(xdata_, range, overlap);
  for (uint32_t unit = range.start; unit < range.end && unit < RowOf(space).limit; ++unit) {
    int owner = RamOwner(space, unit);
    if (owner < 0) continue;
    uint32_t end = unit + 1;
    while (end < range.end && end < RowOf(space).limit && RamOwner(space, end) == owner) ++end;
    overlap = {unit, end};
    return owner;
  }
  return -1;
}

void MemoryModel::Occupy(Space space, Range range, int owner) {
  if (space == Space::Code) return OccupyInSet(code_, range, owner);
  if (space == Space::Xdata) return OccupyInSet(xdata_, range, owner);
  for (uint32_t unit = range.start; unit < range.end && unit < RowOf(space).limit; ++unit)
    OccupyRam(space, unit, owner);
}

std::vector<Range> MemoryModel::FreeRanges(Space space, Range window) const {
  std::vector<Range> free;
  if (space == Space::Code || space == Space::Xdata) {
    const RangeSet& set = space == Space::Code ? code_ : xdata_;
    uint32_t at = window.start;
    for (auto it = set.begin(); it != set.end() && at < window.end; ++it) {
      if (it->second.end <= at) continue;
      if (it->first > at) free.push_back({at, std::min(it->first, window.end)});
      at = std::max(at, it->second.end);
    }
    if (at < window.end) free.push_back({at, window.end});
    return free;
  }
  for (uint32_t unit = window.start; unit < window.end; ++unit) {
    if (RamOwner(space, unit) >= 0) continue;
    if (!free.empty() && free.back().end == unit)
      free.back().end = unit + 1;
    else
      free.push_back({unit, unit + 1});
  }
  return free;
}

}  // namespace ta51::linker
