// The run state of code banks: the banks that SEGMENT statements name with
// their BANK clause, and the switching methods those banks use. Built in the
// first pass, numbered when the second pass is through, written once each
// into the object module.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

namespace ta51 {

// One way of switching banks: through a port, an SFR or an address in
// external memory, or none named.
struct BankControl {
  std::string word;  // PORT, SFR, XDATA or empty
  int32_t number = 0;  // from 1 in order of creation, empty word included
  bool written = false;  // its NC record is in the module
};

// One bank: a name, a switching method and the number of the clause.
struct BankRecord {
  uint32_t portValue = 0;
  BankControl* control = nullptr;
  bool written = false;  // its records are in the module
  int32_t number = 0;   // given when the second pass is through
  std::string name;     // __CODE_BANK1
};

struct BankState {
  // Deques: segments keep pointers to the entries.
  std::deque<BankControl> Controls;
  std::deque<BankRecord> Banks;
};

}  // namespace ta51
