// The symbol table. Look-ups go through a hash index; the observable order
// (57 chains chosen by a name's first character, names in byte order inside
// each, equal names in the order of definition) is produced by one sort when
// the listing or the object module asks for it.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/large_blocks.h"

namespace ta51 {

struct SegmentEntry;

// Symbol types. 14, 19, 20, 23 and 24 are shared with the segment types.
enum : int32_t {
  T_EQU = 3,
  T_SET = 5,
  T_MACRO = 8,
  T_NAMEDMACRO = 9,
  T_MACROVALUE = 11,
  T_BIT = 14,
  T_REGEQU = 15,
  T_REGSET = 16,
  T_DECLARED = 17,
  T_DATA = 19,
  T_CODE = 20,
  T_RSEGMENT = 21,
  T_NUMBER = 22,
  T_XDATA = 23,
  T_IDATA = 24,
};

// Relocation classes.
enum : int32_t { REL_NULL = 0, REL_XDEF = 1, REL_XREF = 2, REL_XDREF = 4 };

// Bits of SymbolEntry::flags.
enum : uint8_t {
  kSymSettable = 1 << 0,
  kSymPredefined = 1 << 1,
  kSymUsedExternal = 1 << 2,
  kSymText = 1 << 3,
  kSymFlag4 = 1 << 4,
  kSymFlag5 = 1 << 5,
  kSymNameStored = 1 << 6,  // the name is in the arena, not in the entry
};

// What few symbols carry: linker text, macro bodies. Kept apart so that the
// common entry stays small.
struct SymbolExtra {
  std::string expression;               // linker text used in place of value
  std::string body;                     // macro body text
  std::vector<std::string> parameters;  // named macros only
};

// One symbol, 48 bytes. What a look-up reads (the name, the chain, the
// flags, then type and value) is in the first 16, so that it seldom waits for
// a second cache line. The name is followed by a zero byte; one of up to
// 7 characters is kept in the entry itself, a longer one in the table's arena.
struct SymbolEntry {
  static constexpr size_t kInlineName = 8;  // with the zero byte
  union {
    char inlineName[kInlineName];
    const char* storedName;  // when kSymNameStored is set
  } nameText = {};
  int32_t value = 0;
  int8_t type = 0;
  int8_t relocation = REL_NULL;
  uint8_t flags = 0;
  uint8_t chain = 0;  // chain chosen when the name was entered
  uint32_t scope = 0;         // file scope of a `.@` name, else 0
  uint16_t nameLength = 0;
  SegmentEntry* segment = nullptr;
  SymbolExtra* extra = nullptr;
  uint32_t itemCount = 0;
  uint32_t itemSize = 0;

  std::string_view Name() const {
    return {(flags & kSymNameStored) != 0 ? nameText.storedName : nameText.inlineName, nameLength};
  }
  // The side record, or an empty one for an entry that has none.
  const SymbolExtra& ExtraOrEmpty() const {
    static const SymbolExtra kNone;
    return extra != nullptr ? *extra : kNone;
  }
  std::string_view Expression() const { return extra != nullptr ? std::string_view(extra->expression) : std::string_view(); }
};
static_assert(sizeof(SymbolEntry) == 48);

constexpr int kChainCount = 57;
constexpr int kDigitChain = 53;
constexpr int kFileScopeChain = 54;
constexpr size_t kMaxNameLength = 257;

class SymbolTable {
 public:
  using ScopeId = uint32_t;
  static constexpr ScopeId kNoScope = UINT32_MAX;

  // Entries, index and names are taken from `memory`, which outlives the table.
  explicit SymbolTable(LargeBlockArena& memory);
  ~SymbolTable();
  SymbolTable(const SymbolTable&) = delete;
  SymbolTable& operator=(const SymbolTable&) = delete;
  // Empties the table; what it took from the arena stays there until the run ends.
  void Clear();

  static int ChainIndexOf(std::string_view name, bool noCase);

  // Starts loading the index slot where a look-up of `name` begins, so that
  // a definition found later in the line does not wait for memory.
  void Prefetch(std::string_view name) const {
    bool fileScoped = name.size() > 1 && name[0] == '.' && name[1] == '@';
    __builtin_prefetch(&slots_[Hash(name, fileScoped ? fileScope_ : 0) & (slotCount_ - 1)]);
  }
  // First entry of that name which is visible, or nullptr.
  SymbolEntry* Find(std::string_view name, bool noCase, bool predefinedEnabled);
  // Enters `name` with the other fields of `fields`; it comes behind every
  // entry of the same name.
  SymbolEntry* Insert(std::string_view name, const SymbolEntry& fields, bool noCase);
  // The side record of an entry, made when first asked for.
  SymbolExtra& ExtraOf(SymbolEntry& entry);
  // Sets or clears the linker text of an entry.
  void SetExpression(SymbolEntry& entry, std::string_view text);

  // Every entry in the observable order, without the file-scope chain.
  template <class Visit>
  void ForEach(Visit visit) {
    for (uint32_t index : ObservableOrder()) visit(static_cast<const SymbolEntry&>(At(index)));
  }

  // The entries for which `keep` holds, in the observable order; only they
  // are sorted.
  template <class Keep, class Visit>
  void ForEachWhere(Keep keep, Visit visit) {
    Walk(keep, visit, false);
  }
  // The same with the file-scope chain in its place, between the digits
  // and `.` (debug records name those symbols too).
  template <class Keep, class Visit>
  void ForEachWithFileScopes(Keep keep, Visit visit) {
    Walk(keep, visit, true);
  }

  // File scopes of `.@` names: 0 is the main file's.
  ScopeId CurrentFileScope() const { return fileScope_; }
  void SetCurrentFileScope(ScopeId scope) { fileScope_ = scope; }
  ScopeId NewFileScope();
  // Second pass: the scope recorded for the next include, or kNoScope.
  ScopeId NextRecordedScope();
  void RewindFileScopes() { scopeCursor_ = 0; }

  size_t LongestName() const { return longestName_; }
  // Whether a register alias (EQU or SET of a register) was ever defined;
  // until then no operand needs to look one up.
  bool HasRegisterAliases() const { return hasRegisterAliases_; }
  void NoteRegisterAlias() { hasRegisterAliases_ = true; }
  size_t Size() const { return count_; }

 private:
  static constexpr uint32_t kChunkShift = 9;
  static constexpr uint32_t kChunkSize = 1u << kChunkShift;
  // Index tables up to this size come from the arena; a larger one has a
  // block of its own, given back when the index grows.
  static constexpr size_t kLargestArenaSlots = size_t{1} << 17;
  static constexpr size_t kArenaBlock = 64 * 1024;

  template <class Keep, class Visit>
  void Walk(Keep keep, Visit visit, bool withFileScopes) {
    std::vector<uint32_t> chosen;
    for (uint32_t index = 0; index < count_; ++index) {
      const SymbolEntry& entry = At(index);
      if ((withFileScopes || entry.chain != kFileScopeChain) && keep(entry)) chosen.push_back(index);
    }
    SortObservable(chosen);
    for (uint32_t index : chosen) visit(static_cast<const SymbolEntry&>(At(index)));
  }
  SymbolEntry& At(uint32_t index) { return entryChunks_[index >> kChunkShift][index & (kChunkSize - 1)]; }
  const SymbolEntry& At(uint32_t index) const { return entryChunks_[index >> kChunkShift][index & (kChunkSize - 1)]; }
  // One slot of the index: the entry's hash beside its number, so that a
  // probe reads no entry whose hash differs.
  struct Slot {
    uint32_t hash;
    uint32_t entry;  // index + 1, 0 for an empty slot
  };
  static uint32_t Hash(std::string_view name, uint32_t scope);
  void PlaceInIndex(uint32_t hash, uint32_t index);
  void Grow();
  void MakeSlots(size_t count);
  void ReleaseSlots();
  void StoreName(SymbolEntry& entry, std::string_view name);
  const std::vector<uint32_t>& ObservableOrder();
  void SortObservable(std::vector<uint32_t>& indexes) const;

  // Entries and index are read at random on every look-up: they live in
  // large blocks, where the system may back them with huge pages.
  LargeBlockArena& arena_;
  std::vector<SymbolEntry*> entryChunks_;  // made in the arena as entries arrive
  uint32_t count_ = 0;
  Slot* slots_ = nullptr;  // open addressing, linear probes, at most 3/4 full
  size_t slotCount_ = 0;
  size_t slotsMapped_ = 0;  // size of the index's own block, 0 when it is in the arena
  char* names_ = nullptr;  // the block that names are stored in now
  size_t namesUsed_ = kArenaBlock;
  std::deque<SymbolExtra> extras_;
  std::vector<uint32_t> order_;
  bool orderValid_ = false;
  bool orderFolded_ = false;
  ScopeId fileScope_ = 0;
  uint32_t scopeCount_ = 0;  // scopes made by NewFileScope, numbered from 1
  uint32_t scopeCursor_ = 0;
  size_t longestName_ = 0;
  bool hasRegisterAliases_ = false;
  bool foldCase_ = false;
};

}  // namespace ta51
