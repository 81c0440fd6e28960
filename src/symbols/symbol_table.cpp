#include "symbols/symbol_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <type_traits>

namespace ta51 {

namespace {

// The arena gives its memory back without running destructors.
static_assert(std::is_trivially_destructible_v<SymbolEntry>);

// Upper case of every byte, a table so that the hash of a name takes one
// look per character and no branch.
constexpr auto kFolded = [] {
  std::array<unsigned char, 256> folded{};
  for (int c = 0; c < 256; ++c) folded[static_cast<size_t>(c)] = static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  return folded;
}();

unsigned char Fold(unsigned char c) { return kFolded[c]; }

uint64_t InlineWord(const SymbolEntry& entry) {
  uint64_t word;
  std::memcpy(&word, entry.nameText.inlineName, sizeof word);
  return word;
}

bool EqualFolded(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (Fold(static_cast<unsigned char>(a[i])) != Fold(static_cast<unsigned char>(b[i]))) return false;
  return true;
}

// Byte order of names, optionally with case folded to upper case.
int CompareNames(std::string_view a, std::string_view b, bool foldCase) {
  size_t common = a.size() < b.size() ? a.size() : b.size();
  for (size_t i = 0; i < common; ++i) {
    unsigned char x = static_cast<unsigned char>(a[i]);
    unsigned char y = static_cast<unsigned char>(b[i]);
    if (foldCase) {
      x = Fold(x);
      y = Fold(y);
    }
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

}  // namespace

SymbolTable::SymbolTable(LargeBlockArena& memory) : arena_(memory) { Clear(); }

SymbolTable::~SymbolTable() { ReleaseSlots(); }

void SymbolTable::Clear() {
  ReleaseSlots();
  entryChunks_.clear();
  count_ = 0;
  MakeSlots(1024);
  names_ = nullptr;
  namesUsed_ = kArenaBlock;
  extras_.clear();
  order_.clear();
  orderValid_ = false;
  fileScope_ = 0;
  scopeCount_ = 0;
  scopeCursor_ = 0;
  longestName_ = 0;
  hasRegisterAliases_ = false;
  foldCase_ = false;
}

int SymbolTable::ChainIndexOf(std::string_view name, bool noCase) {
  if (name.empty()) return 52;
  unsigned char first = static_cast<unsigned char>(name[0]);
  if (first >= '0' && first <= '9') return kDigitChain;
  if (first == '.') return name.size() > 1 && name[1] == '@' ? kFileScopeChain : 55;
  if (first == '_') return 56;
  if (first >= 'A' && first <= 'Z') return first - 'A';
  if (first >= 'a' && first <= 'z') return noCase ? first - 'a' : 26 + (first - 'a');
  return 52;
}

// The hash ignores case, so that one index serves both NOCASE settings.
uint32_t SymbolTable::Hash(std::string_view name, uint32_t scope) {
  uint32_t hash = 2166136261u ^ (scope * 0x9E3779B9u);
  for (char c : name) hash = (hash ^ Fold(static_cast<unsigned char>(c))) * 16777619u;
  return hash;
}

// Memory fresh from the system is zero: every slot starts empty.
void SymbolTable::MakeSlots(size_t count) {
  ReleaseSlots();
  if (count <= kLargestArenaSlots) {
    slots_ = static_cast<Slot*>(arena_.Take(count * sizeof(Slot)));
  } else {
    slots_ = static_cast<Slot*>(TakeLargeBlock(count * sizeof(Slot), slotsMapped_));
  }
  slotCount_ = count;
}

void SymbolTable::ReleaseSlots() {
  if (slotsMapped_ != 0) ReleaseLargeBlock(slots_, slotsMapped_);
  slotsMapped_ = 0;
  slots_ = nullptr;
  slotCount_ = 0;
}

// Entries of equal hash lie along one probe sequence in the order they were
// placed; placing them in the order of entry keeps equal names in that order.
void SymbolTable::PlaceInIndex(uint32_t hash, uint32_t index) {
  uint32_t mask = static_cast<uint32_t>(slotCount_ - 1);
  uint32_t slot = hash & mask;
  while (slots_[slot].entry != 0) slot = (slot + 1) & mask;
  slots_[slot] = Slot{hash, index + 1};
}

// Twice the slots, filled from the old ones without reading an entry. The
// old slots are taken from just behind an empty one, so that every probe
// sequence is met from its start: entries of equal hash come in the order
// they were placed, and keep it.
void SymbolTable::Grow() {
  const Slot* old = slots_;
  const size_t oldCount = slotCount_;
  const size_t oldMapped = slotsMapped_;
  slotsMapped_ = 0;
  MakeSlots(oldCount * 2);
  const size_t oldMask = oldCount - 1;
  size_t start = 0;
  while (old[start].entry != 0) ++start;  // the index is never full
  for (size_t step = 1; step <= oldCount; ++step) {
    const Slot& slot = old[(start + step) & oldMask];
    if (slot.entry != 0) PlaceInIndex(slot.hash, slot.entry - 1);
  }
  if (oldMapped != 0) ReleaseLargeBlock(const_cast<Slot*>(old), oldMapped);
}

// The inline bytes behind a short name stay zero, so that comparing one
// takes a single 8-byte word.
void SymbolTable::StoreName(SymbolEntry& entry, std::string_view name) {
  size_t needed = name.size() + 1;
  entry.nameLength = static_cast<uint16_t>(name.size());
  entry.nameText = {};
  if (needed <= SymbolEntry::kInlineName) {
    std::memcpy(entry.nameText.inlineName, name.data(), name.size());
    entry.flags = static_cast<uint8_t>(entry.flags & ~kSymNameStored);
    return;
  }
  if (namesUsed_ + needed > kArenaBlock) {
    names_ = static_cast<char*>(arena_.Take(std::max(kArenaBlock, needed)));
    namesUsed_ = 0;
  }
  char* stored = names_ + namesUsed_;
  std::memcpy(stored, name.data(), name.size());
  stored[name.size()] = '\0';
  namesUsed_ += needed;
  entry.nameText.storedName = stored;
  entry.flags |= kSymNameStored;
}

SymbolEntry* SymbolTable::Find(std::string_view name, bool noCase, bool predefinedEnabled) {
  if (noCase != foldCase_) {
    foldCase_ = noCase;
    orderValid_ = false;
  }
  int chain = ChainIndexOf(name, noCase);
  uint32_t scope = chain == kFileScopeChain ? fileScope_ : 0;
  uint32_t hash = Hash(name, scope);
  uint32_t mask = static_cast<uint32_t>(slotCount_ - 1);
  // A short name as the word its entry holds: zero bytes behind it.
  const bool shortName = name.size() < SymbolEntry::kInlineName;
  uint64_t shortWord = 0;
  if (shortName) std::memcpy(&shortWord, name.data(), name.size());
  SymbolEntry* best = nullptr;
  for (uint32_t slot = hash & mask; slots_[slot].entry != 0; slot = (slot + 1) & mask) {
    if (slots_[slot].hash != hash) continue;
    SymbolEntry& entry = At(slots_[slot].entry - 1);
    if (entry.chain != chain || (chain == kFileScopeChain && entry.scope != scope)) continue;
    if (!predefinedEnabled && (entry.flags & kSymPredefined)) continue;
    if (!noCase) {
      if (shortName ? (entry.flags & kSymNameStored) == 0 && InlineWord(entry) == shortWord
                    : entry.nameLength == name.size() && (entry.flags & kSymNameStored) != 0 &&
                          std::memcmp(entry.nameText.storedName, name.data(), name.size()) == 0)
        return &entry;
      continue;
    }
    // Ignoring case, the first in the chain's order wins: byte order, then
    // the order of entry.
    if (EqualFolded(entry.Name(), name) && (best == nullptr || CompareNames(entry.Name(), best->Name(), false) < 0))
      best = &entry;
  }
  return best;
}

SymbolEntry* SymbolTable::Insert(std::string_view name, const SymbolEntry& fields, bool noCase) {
  // Every reader of names stops far below this; the bound keeps the length field exact.
  name = name.substr(0, UINT16_MAX);
  if (noCase != foldCase_) foldCase_ = noCase;
  if ((count_ + 1) * 4 > slotCount_ * 3) Grow();
  uint32_t index = count_;
  if ((index & (kChunkSize - 1)) == 0)
    entryChunks_.push_back(static_cast<SymbolEntry*>(arena_.Take(kChunkSize * sizeof(SymbolEntry))));
  SymbolEntry& stored = *new (&At(index)) SymbolEntry(fields);
  StoreName(stored, name);
  stored.chain = static_cast<uint8_t>(ChainIndexOf(name, noCase));
  stored.scope = stored.chain == kFileScopeChain ? fileScope_ : 0;
  ++count_;
  PlaceInIndex(Hash(name, stored.scope), index);
  if (name.size() + 1 > longestName_) longestName_ = name.size() + 1;
  orderValid_ = false;
  return &stored;
}

SymbolExtra& SymbolTable::ExtraOf(SymbolEntry& entry) {
  if (entry.extra == nullptr) entry.extra = &extras_.emplace_back();
  return *entry.extra;
}

void SymbolTable::SetExpression(SymbolEntry& entry, std::string_view text) {
  if (text.empty()) {
    if (entry.extra != nullptr) entry.extra->expression.clear();
    return;
  }
  ExtraOf(entry).expression.assign(text);
}

const std::vector<uint32_t>& SymbolTable::ObservableOrder() {
  if (orderValid_ && orderFolded_ == foldCase_) return order_;
  order_.clear();
  for (uint32_t index = 0; index < count_; ++index)
    if (At(index).chain != kFileScopeChain) order_.push_back(index);
  SortObservable(order_);
  orderValid_ = true;
  orderFolded_ = foldCase_;
  return order_;
}

// Chain, then name (case folded under NOCASE, bytes deciding among names
// that fold alike), then the order of entry.
void SymbolTable::SortObservable(std::vector<uint32_t>& indexes) const {
  bool fold = foldCase_;
  std::sort(indexes.begin(), indexes.end(), [this, fold](uint32_t a, uint32_t b) {
    const SymbolEntry& x = At(a);
    const SymbolEntry& y = At(b);
    if (x.chain != y.chain) return x.chain < y.chain;
    int order = fold ? CompareNames(x.Name(), y.Name(), true) : 0;
    if (order == 0) order = x.Name().compare(y.Name());
    return order != 0 ? order < 0 : a < b;
  });
}

SymbolTable::ScopeId SymbolTable::NewFileScope() {
  ++scopeCount_;
  scopeCursor_ = scopeCount_;
  return scopeCount_;
}

SymbolTable::ScopeId SymbolTable::NextRecordedScope() {
  if (scopeCursor_ >= scopeCount_) return kNoScope;
  return ++scopeCursor_;
}

}  // namespace ta51
