// The words of the C-style directives, written in lower case and compared
// exactly, with their codes; and the word operator of #if. Data of the
// language: the fuzz dictionary is made from this table too.
#pragma once

#include <cstdint>
#include <iterator>
#include <string_view>

#include "core/keyword_index.h"
#include "core/keyword_tables.h"

namespace ta51 {

enum : uint8_t {
  kCDefine = 1,
  kCUndef = 2,
  kCInclude = 3,
  kCIf = 4,
  kCIfdef = 5,
  kCIfndef = 6,
  kCElse = 7,
  kCElif = 8,
  kCEndif = 9,
};

inline constexpr KeywordRow kCStyleDirectiveRows[] = {
    {"define", kCDefine},
    {"undef", kCUndef},
    {"include", kCInclude},
    {"if", kCIf},
    {"ifdef", kCIfdef},
    {"ifndef", kCIfndef},
    {"else", kCElse},
    {"elif", kCElif},
    {"endif", kCEndif},
};

inline constexpr std::string_view kCDefinedOperator = "defined";

inline constexpr KeywordIndex<KeywordSlots(std::size(kCStyleDirectiveRows))> kCStyleDirectiveIndex(
    kCStyleDirectiveRows, [](const KeywordRow& row) { return std::string_view(row.keyword); });

// The code of a directive word, or 0; case counts.
inline int FindCStyleDirective(std::string_view word) {
  int row = FindIndexedKeyword(std::span<const uint16_t>(kCStyleDirectiveIndex.slots),
                               std::span<const KeywordRow>(kCStyleDirectiveRows),
                               [](const KeywordRow& r) { return std::string_view(r.keyword); }, word,
                               KeywordHash(word), false);
  return row < 0 ? 0 : kCStyleDirectiveRows[row].code;
}

}  // namespace ta51
