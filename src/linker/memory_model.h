// Which addresses of each space are taken, and by which segment. Code and
// external data memory are sets of ranges; the internal RAM is a map of
// bytes and bits, since DATA, IDATA and BIT share it: DATA and IDATA are the
// same bytes below 80H, and bit n is bit n mod 8 of byte 20H + n/8.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "linker/link_types.h"

namespace ta51::linker {

class MemoryModel {
 public:
  MemoryModel();

  // The owner of the first unit of `range` already taken, or -1. `overlap`
  // gets the run of units from there that the same owner holds.
  int FindConflict(Space space, Range range, Range& overlap) const;
  // Takes the free units of `range` for `owner`.
  void Occupy(Space space, Range range, int owner);
  // The free ranges of a space inside `window`, in address order.
  std::vector<Range> FreeRanges(Space space, Range window) const;

 private:
  struct Taken {
    uint32_t end;
    int owner;
  };
  using RangeSet = std::map<uint32_t, Taken>;  // by start

  static int FindInSet(const RangeSet& set, Range range, Range& overlap);
  static void OccupyInSet(RangeSet& set, Range range, int owner);
  int RamOwner(Space space, uint32_t unit) const;
  void OccupyRam(Space space, uint32_t unit, int owner);

  RangeSet code_, xdata_;
  std::array<int, 256> ramBytes_;  // 00-FF: DATA below 80H, IDATA everywhere
  std::array<int, 128> ramBits_;   // bit addresses 00-7F
  std::array<int, 128> sfrBytes_;  // DATA 80-FF: special function registers
  std::array<int, 128> sfrBits_;   // bit addresses 80-FF
};

}  // namespace ta51::linker
