// Segments: a run of memory with its own location counter.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace ta51 {

// Placement codes (`kind`).
enum : int32_t {
  kKindUnit = 1,
  kKindAbsolute = 2,
  kKindPostpone = 3,
  kKindHigh = 4,
  kKindPage = 5,
  kKindInpage = 6,
  kKindInblock = 7,
  kKindBitaddressable = 8,
  kKindOverlayable = 9,
  kKindInterrupt = 10,
};

// Attributes.
enum : int32_t { kAttrNone = 0, kAttrVararg = 11, kAttrCommon = 12, kAttrPredefined = 13 };

// Type code of a register bank segment.
constexpr int32_t kRegisterBankType = 16;

struct BankRecord;

struct SegmentEntry {
  int32_t type = 0;
  int32_t kind = 0;
  int32_t attribute = 0;
  SegmentEntry* owner = nullptr;
  BankRecord* bank = nullptr;
  bool hasCallTargetList = false;
  std::vector<std::string> CallTargetList;
  int32_t number = 0;
  uint32_t location = 0;
  uint32_t reserved = 0;
  uint32_t startAddress = 0;  // absolute segments
  std::string name;           // other segments
  int registerBank = -1;      // 0..3 for a register bank segment

  bool IsAbsolute() const { return kind == kKindAbsolute; }
};

struct SegmentTable {
  std::deque<SegmentEntry> entries;  // creation order; addresses stay valid
  SegmentEntry* predefinedOwner[4] = {nullptr, nullptr, nullptr, nullptr};  // XDATA, IDATA, DATA, BIT

  void Clear() {
    entries.clear();
    for (auto& owner : predefinedOwner) owner = nullptr;
  }
};

}  // namespace ta51
