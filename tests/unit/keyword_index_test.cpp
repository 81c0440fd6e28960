// The hashed keyword look-up must find exactly what a search of the table in
// row order finds: every keyword, its first row, and nothing else.
#include <gtest/gtest.h>

#include <string>

#include "core/keyword_tables.h"
#include "core/option_keywords.h"
#include "isa/encoder.h"
#include "core/keyword_index.h"

namespace ta51 {
namespace {

const KeywordRow* FirstInOrder(const KeywordTable& table, std::string_view word, bool ignoreCase) {
  for (const KeywordRow& row : table)
    if (ignoreCase ? EqualIgnoringCase(row.keyword, word) : word == row.keyword) return &row;
  return nullptr;
}

std::string Lower(std::string_view word) {
  std::string text(word);
  for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return text;
}

TEST(KeywordIndexTest, EveryTableFindsWhatASearchInRowOrderFinds) {
  for (const KeywordTable* table :
       {&kDataDirectives, &kGeneralDirectives, &kDollarControls, &kPercentKeywords, &kIfKeywords, &kEndKeywords}) {
    for (const KeywordRow& row : *table) {
      EXPECT_EQ(FindKeyword(*table, row.keyword), FirstInOrder(*table, row.keyword, false)) << row.keyword;
      std::string lower = Lower(row.keyword);
      EXPECT_EQ(FindKeywordIgnoringCase(*table, lower), FirstInOrder(*table, lower, true)) << lower;
      if (lower != row.keyword) {
        EXPECT_EQ(FindKeyword(*table, lower), nullptr) << lower;
      }
      std::string longer = std::string(row.keyword) + "X";
      EXPECT_EQ(FindKeyword(*table, longer), FirstInOrder(*table, longer, false)) << longer;
    }
    EXPECT_EQ(FindKeyword(*table, ""), nullptr);
  }
}

TEST(KeywordIndexTest, MnemonicsAndOptionsAreFound) {
  for (int row = 0; row < 45; ++row) {
    std::string_view word = kMnemonics[row].word;
    EXPECT_EQ(FindMnemonic(word, KeywordHash(word)), row) << word;
    std::string lower = Lower(word);
    EXPECT_EQ(FindMnemonic(lower, KeywordHash(lower)), -1) << "mnemonics are matched in upper case";
  }
  EXPECT_EQ(FindMnemonic("MOVV", KeywordHash("MOVV")), -1);
  // Codes shared by aliases, case ignored.
  EXPECT_EQ(FindOption("objoff"), 28);
  EXPECT_EQ(FindOption("O"), FindOption("OBJ"));
  EXPECT_EQ(FindOption("nol"), FindOption("NOLIST"));
  EXPECT_EQ(FindOption("NODEBUGX"), kNoOption);
}

}  // namespace
}  // namespace ta51
