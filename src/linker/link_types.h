// What tl51 knows of the modules it links: their segments, symbols and
// bodies as read, and the joined segments that placement makes of them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ta51::linker {

// The five address spaces, in the order of the map.
enum class Space : uint8_t { Code, Xdata, Data, Idata, Bit };
constexpr int kSpaceCount = 5;

struct SpaceRow {
  Space space;
  std::string_view name;      // as the map and messages write it
  std::string_view typeText;  // in an ST record
  uint32_t limit;             // first address past the space (bit addresses for BIT)
  uint8_t digits;             // width of an address in the map
  uint8_t placementRank;      // order of placement within a class: BIT before DATA before IDATA
};

// BIT and DATA come before IDATA in placement because they have less room to
// choose from: bits only 20H-2FH, DATA only the lower 128 bytes.
inline constexpr SpaceRow kSpaceRows[kSpaceCount] = {
    {Space::Code, "CODE", "C", 0x10000, 4, 0},
    {Space::Xdata, "XDATA", "X", 0x10000, 4, 1},
    {Space::Data, "DATA", "D,Z", 0x100, 2, 3},
    {Space::Idata, "IDATA", "I,Z", 0x100, 2, 4},
    {Space::Bit, "BIT", "B,Z", 0x100, 2, 2},
};

constexpr const SpaceRow& RowOf(Space space) { return kSpaceRows[static_cast<int>(space)]; }

// Half-open range of addresses [start, end).
struct Range {
  uint32_t start = 0;
  uint32_t end = 0;
  uint32_t Size() const { return end - start; }
};

// Where a relocatable segment may start: a multiple of `align`, and, with a
// window, wholly inside one window of `windowSize` units at `windowBase`.
struct PlacementRule {
  uint32_t align = 1;
  uint32_t windowBase = 0;
  uint32_t windowSize = 0;  // 0: no window
  bool HasWindow() const { return windowSize != 0; }
};

// One ST record of a module, with what its SA, ASS, ASL and ASQ records add.
struct ModuleSegment {
  uint32_t number = 0;
  Space space = Space::Code;
  bool absolute = false;
  int registerBank = -1;  // 0 to 3 for a register bank segment
  char placement = 0;     // H, P, O or E
  char attribute = 0;     // V, M or K
  std::string name;
  bool hasOwner = false;
  uint32_t owner = 0;
  PlacementRule rule;
  uint32_t size = 0;
  uint32_t load = 0;  // ASL: the address of an absolute segment
  bool hasLoad = false;
  uint32_t reserved = 0;  // ASQ
  // Set by placement.
  uint32_t base = 0;   // address of this module's part
  int group = -1;      // index into Linker::groups
  uint32_t location = 0;  // location counter while the body is replayed
};

struct External {
  uint32_t number = 0;
  std::string name;
};

enum class ValueState : uint8_t { NotYet, Working, Done, Failed };

struct Public {
  std::string name;
  std::string_view text;  // the ASI value: R<n>+<offset>, a number or a text
  uint32_t record = 0;
  ValueState state = ValueState::NotYet;
  int32_t value = 0;
  int segment = -1;  // index of the module segment of an R<n>+<offset> value
};

struct CallTarget {
  uint32_t segment = 0;
  std::string_view text;
};

// One record of the body, replayed in order after placement.
enum class BodyKind : uint8_t { Select, SetLocation, Load };
struct BodyItem {
  BodyKind kind;
  uint32_t value;  // segment number of SB, location of ASP, record number of LR
  std::string_view text;  // the items of an LR record
};

// One line of a BB5 block: a source line and the text of its address.
struct LineMark {
  std::string file;
  uint32_t line = 0;
  std::string_view address;
};

struct Module {
  std::string name;
  int file = -1;
  uint32_t firstRecord = 0;
  bool fromLibrary = false;
  bool linked = false;
  std::vector<ModuleSegment> segments;
  std::vector<External> externals;
  std::vector<Public> publics;
  std::vector<CallTarget> calls;
  std::vector<std::string> noOverlay;
  std::vector<std::string> libraries;
  std::vector<BodyItem> body;
  std::vector<LineMark> lines;
  std::string bankName;  // the first code bank met; refused when linked

  // Index of the segment with that number, or -1.
  int SegmentIndex(uint32_t number) const {
    auto found = segmentByNumber.find(number);
    return found == segmentByNumber.end() ? -1 : found->second;
  }
  const External* FindExternal(uint32_t number) const {
    auto found = externalByNumber.find(number);
    return found == externalByNumber.end() ? nullptr : &externals[static_cast<size_t>(found->second)];
  }
  std::unordered_map<uint32_t, int> segmentByNumber;
  std::unordered_map<uint32_t, int> externalByNumber;
};

// One input file: its text stays in memory, the records point into it.
struct InputText {
  std::string path;
  std::string text;
  bool library = false;
};

// A segment as placed: an absolute segment alone, or the parts of one name
// from every module joined (or overlaid, for COMMON).
struct SegmentGroup {
  std::string name;  // empty for an absolute segment
  Space space = Space::Code;
  bool absolute = false;
  bool common = false;
  int registerBank = -1;
  char placement = 0;
  struct Part {
    int module;
    int segment;
  };
  std::vector<Part> parts;
  uint32_t base = 0;
  uint32_t size = 0;
  bool placed = false;
  int order = 0;  // first appearance, for placement in command-line order
};

}  // namespace ta51::linker
