// The symbol table: 57 chains chosen by a name's first character. The order
// of the chains, and the name order inside each, is what the listing and the
// object module show; look-ups go through an ordered index, never a long walk.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

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
};

struct SymbolEntry {
  std::string name;
  int32_t value = 0;
  std::vector<std::string> parameters;  // named macros only
  int32_t type = 0;
  uint32_t itemCount = 0;
  uint32_t itemSize = 0;
  int32_t relocation = REL_NULL;
  uint8_t flags = 0;
  SegmentEntry* segment = nullptr;
  std::string expression;  // linker text used in place of value
  std::string body;        // macro body text (MACRO definitions)
};

constexpr int kChainCount = 57;
constexpr int kDigitChain = 53;
constexpr int kFileScopeChain = 54;
constexpr size_t kMaxNameLength = 257;

// Byte order of names, optionally with case folded to upper case.
struct NameOrder {
  bool foldCase = false;
  bool operator()(const std::string& a, const std::string& b) const;
};

class SymbolTable {
 public:
  using Chain = std::multimap<std::string, SymbolEntry*, NameOrder>;

  SymbolTable();
  void Clear();

  static int ChainIndexOf(std::string_view name, bool noCase);

  // First entry of that name which is visible, or nullptr.
  SymbolEntry* Find(std::string_view name, bool noCase, bool predefinedEnabled);
  // Links a new entry behind every entry of the same name.
  SymbolEntry* Insert(SymbolEntry entry, bool noCase);

  // Every entry in the observable order, without the file-scope chain.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (int chain = 0; chain < kChainCount; ++chain) {
      if (chain == kFileScopeChain) continue;
      for (const auto& [name, entry] : chains_[chain]) visit(*entry);
    }
  }

  // File scopes of `.@` names.
  Chain* CurrentFileScope() const { return fileScope_; }
  void SetCurrentFileScope(Chain* chain) { fileScope_ = chain; }
  Chain* NewFileScope();
  // Second pass: the scope recorded for the next include, or nullptr.
  Chain* NextRecordedScope();
  void RewindFileScopes() { scopeCursor_ = 0; }

  size_t LongestName() const { return longestName_; }
  size_t Size() const { return entries_.size(); }

 private:
  Chain& ChainFor(int index) { return index == kFileScopeChain ? *fileScope_ : chains_[index]; }
  void ApplyOrder(bool foldCase);

  Chain chains_[kChainCount];
  std::deque<Chain> scopeChains_;
  std::vector<Chain*> fileScopes_;
  size_t scopeCursor_ = 0;
  Chain* fileScope_ = nullptr;
  std::deque<SymbolEntry> entries_;
  size_t longestName_ = 0;
  bool foldCase_ = false;
};

}  // namespace ta51
