// Keyword tables of the statement dispatcher, searched in a fixed order.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace ta51 {

struct KeywordRow {
  const char* keyword;
  uint8_t code;
};

extern const std::span<const KeywordRow> kDataDirectives;
extern const std::span<const KeywordRow> kGeneralDirectives;
extern const std::span<const KeywordRow> kDollarControls;
extern const std::span<const KeywordRow> kPercentKeywords;
extern const std::span<const KeywordRow> kIfKeywords;
extern const std::span<const KeywordRow> kEndKeywords;
// MACRO, EQU, SET and their spellings, with the statement result (kResult*) of each.
extern const std::span<const KeywordRow> kDefiningKeywords;

// The row whose keyword equals `word` exactly, or nullptr.
const KeywordRow* FindKeyword(std::span<const KeywordRow> table, std::string_view word);
// The same with case ignored.
const KeywordRow* FindKeywordIgnoringCase(std::span<const KeywordRow> table, std::string_view word);

// Directive codes with a meaning of their own in the driver.
enum : int {
  kDirFields = 0,
  kDirPageWidth = 1,
  kDirOpt = 2,
  kDirOrg = 3,
  kDirDb = 4,
  kDirDw = 5,
  kDirDs = 6,
  kDirName = 18,
  kDirPage = 19,
  kDirTitle = 20,
  kDirEnd = 21,
  kDirSpace = 22,
  kDirFail = 23,
  kDirInclude = 24,
  kDirIncludeLib = 25,
  kDirDebugEnd = 29,
  kDirNoOverlay = 30,
  kDirEven = 31,
  kDirAlign = 32,
  kDirBit = 34,
  kDirDbit = 35,
  kDirData = 36,
  kDirXdata = 37,
  kDirIdata = 38,
  kDirCode = 39,
  kDirUsing = 40,
  kDirPublic = 41,
  kDirExtern = 42,
  kDirSegment = 45,
  kDirRseg = 51,
  kCtrlRegisterBank = 17,
};

}  // namespace ta51
