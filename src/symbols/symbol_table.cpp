#include "symbols/symbol_table.h"

namespace ta51 {

namespace {
unsigned char Fold(unsigned char c) { return (c >= 'a' && c <= 'z') ? static_cast<unsigned char>(c - 32) : c; }
}  // namespace

bool NameOrder::operator()(const std::string& a, const std::string& b) const {
  size_t common = a.size() < b.size() ? a.size() : b.size();
  for (size_t i = 0; i < common; ++i) {
    unsigned char x = static_cast<unsigned char>(a[i]);
    unsigned char y = static_cast<unsigned char>(b[i]);
    if (foldCase) {
      x = Fold(x);
      y = Fold(y);
    }
    if (x != y) return x < y;
  }
  return a.size() < b.size();
}

SymbolTable::SymbolTable() { Clear(); }

void SymbolTable::Clear() {
  for (auto& chain : chains_) chain = Chain(NameOrder{false});
  scopeChains_.clear();
  fileScopes_.clear();
  scopeCursor_ = 0;
  scopeChains_.emplace_back(NameOrder{false});
  fileScope_ = &scopeChains_.back();
  entries_.clear();
  longestName_ = 0;
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

// Case folding changes the order inside a chain: re-sort once, keeping the
// relative order of names that become equal.
void SymbolTable::ApplyOrder(bool foldCase) {
  if (foldCase == foldCase_) return;
  foldCase_ = foldCase;
  auto reorder = [foldCase](Chain& chain) {
    Chain sorted(NameOrder{foldCase});
    for (auto& item : chain) sorted.emplace(item.first, item.second);
    chain.swap(sorted);
  };
  for (auto& chain : chains_) reorder(chain);
  for (auto& chain : scopeChains_) reorder(chain);
}

SymbolEntry* SymbolTable::Find(std::string_view name, bool noCase, bool predefinedEnabled) {
  ApplyOrder(noCase);
  Chain& chain = ChainFor(ChainIndexOf(name, noCase));
  auto [begin, end] = chain.equal_range(std::string(name));
  for (auto it = begin; it != end; ++it) {
    if (!predefinedEnabled && (it->second->flags & kSymPredefined)) continue;
    return it->second;
  }
  return nullptr;
}

SymbolEntry* SymbolTable::Insert(SymbolEntry entry, bool noCase) {
  ApplyOrder(noCase);
  entries_.push_back(std::move(entry));
  SymbolEntry* stored = &entries_.back();
  Chain& chain = ChainFor(ChainIndexOf(stored->name, noCase));
  chain.emplace_hint(chain.upper_bound(stored->name), stored->name, stored);
  if (stored->name.size() + 1 > longestName_) longestName_ = stored->name.size() + 1;
  return stored;
}

SymbolTable::Chain* SymbolTable::NewFileScope() {
  scopeChains_.emplace_back(NameOrder{foldCase_});
  fileScopes_.push_back(&scopeChains_.back());
  scopeCursor_ = fileScopes_.size();
  return fileScopes_.back();
}

SymbolTable::Chain* SymbolTable::NextRecordedScope() {
  if (scopeCursor_ >= fileScopes_.size()) return nullptr;
  return fileScopes_[scopeCursor_++];
}

}  // namespace ta51
