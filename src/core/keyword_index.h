// Hash indexes of the keyword tables, built at compile time, so that finding
// the opcode word of a line costs one hash and a probe or two per table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ta51 {

constexpr char FoldKeywordChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// Ignores case, so that one index serves exact and case-blind searches.
constexpr uint32_t kKeywordHashStart = 2166136261u;
// One character more of the hash, its case already folded.
constexpr uint32_t KeywordHashStep(uint32_t hash, char folded) {
  return (hash ^ static_cast<unsigned char>(folded)) * 16777619u;
}

constexpr uint32_t KeywordHash(std::string_view word) {
  uint32_t hash = kKeywordHashStart;
  for (char c : word) hash = KeywordHashStep(hash, FoldKeywordChar(c));
  return hash;
}

constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (FoldKeywordChar(a[i]) != FoldKeywordChar(b[i])) return false;
  return true;
}

// Byte for byte: keywords are a few characters long, shorter than the call
// of a general comparison.
constexpr bool SameKeyword(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

// Slots for `rows` keywords: a power of two, at least four times as many.
constexpr size_t KeywordSlots(size_t rows) {
  size_t slots = 8;
  while (slots < 4 * rows) slots *= 2;
  return slots;
}

// Open addressing over the rows of one table; a slot holds a row number plus
// one. Of rows with equal keywords the first is found, as a search in table
// order would.
template <size_t Slots>
struct KeywordIndex {
  std::array<uint16_t, Slots> slots{};

  template <class Row, size_t N, class NameOf>
  constexpr KeywordIndex(const Row (&rows)[N], NameOf nameOf) {
    static_assert(Slots >= 2 * N && (Slots & (Slots - 1)) == 0);
    for (size_t row = 0; row < N; ++row) {
      std::string_view name = nameOf(rows[row]);
      size_t at = KeywordHash(name) & (Slots - 1);
      bool seen = false;
      while (slots[at] != 0 && !seen) {
        seen = nameOf(rows[slots[at] - 1]) == name;
        at = (at + 1) & (Slots - 1);
      }
      if (!seen) slots[at] = static_cast<uint16_t>(row + 1);
    }
  }
};

// The row of `word` in `rows` through its index `slots`, or -1. `hash` is
// KeywordHash(word), computed once per word for all tables.
template <class Row, class NameOf>
int FindIndexedKeyword(std::span<const uint16_t> slots, std::span<const Row> rows, NameOf nameOf,
                       std::string_view word, uint32_t hash, bool ignoreCase) {
  const size_t mask = slots.size() - 1;
  int found = -1;
  for (size_t at = hash & mask; slots[at] != 0; at = (at + 1) & mask) {
    int row = slots[at] - 1;
    std::string_view name = nameOf(rows[row]);
    if (ignoreCase ? EqualIgnoringCase(name, word) : SameKeyword(name, word)) {
      if (!ignoreCase) return row;
      // Case-blind, several rows may match: the first in table order wins.
      if (found < 0 || row < found) found = row;
    }
  }
  return found;
}

}  // namespace ta51
