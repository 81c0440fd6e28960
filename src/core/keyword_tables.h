// Keyword tables of the statement dispatcher, searched in a fixed order. They
// are data of the language, so every subsystem may read them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace ta51 {

struct KeywordRow {
  const char* keyword;
  uint8_t code;
};

// A keyword table with its hash index; iterates over its rows in order.
struct KeywordTable {
  std::span<const KeywordRow> rows;
  std::span<const uint16_t> index;

  const KeywordRow* begin() const { return rows.data(); }
  const KeywordRow* end() const { return rows.data() + rows.size(); }
};

extern const KeywordTable kDataDirectives;
extern const KeywordTable kGeneralDirectives;
extern const KeywordTable kDollarControls;
extern const KeywordTable kPercentKeywords;
// The nine functions of the percent language in expressions.
extern const KeywordTable kPercentFunctions;
extern const KeywordTable kIfKeywords;
extern const KeywordTable kEndKeywords;
// MACRO, EQU, SET and their spellings, with the statement result (kResult*) of each.
extern const KeywordTable kDefiningKeywords;

// The row whose keyword equals `word` exactly, or nullptr; `hash` is
// KeywordHash(word).
const KeywordRow* FindKeyword(const KeywordTable& table, std::string_view word, uint32_t hash);
const KeywordRow* FindKeyword(const KeywordTable& table, std::string_view word);
// The same with case ignored.
const KeywordRow* FindKeywordIgnoringCase(const KeywordTable& table, std::string_view word);

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
  kDirSourceFile = 26,
  kDirSourceLine = 27,
  kDirDebug = 28,
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
};

// Codes of the dollar controls; $EJECT and $TITLE share theirs
// with PAGE and TTL, $INCLUDE with INCLUDE.
enum : int {
  kCtrlSave = 7,
  kCtrlRestore = 8,
  kCtrlSet = 9,
  kCtrlReset = 10,
  kCtrlIf = 11,
  kCtrlEndif = 12,
  kCtrlElse = 13,
  kCtrlElseif = 14,
  kCtrlNoList = 15,
  kCtrlList = 16,
  kCtrlRegisterBank = 17,
  kCtrlEject = 19,
  kCtrlTitle = 20,
};

// Codes of the IF family and of the rows from ENDC to ELSEC.
enum : int {
  kIfC = 1,
  kIfNC = 2,
  kIfGT = 3,
  kIfGE = 4,
  kIfLT = 5,
  kIfLE = 6,
  kIfEQ = 7,
  kIfNE = 8,
  kIfIC = 9,
  kIfINC = 10,
  kIfDef = 11,
  kIfNDef = 12,
};
enum : int { kEndC = 1, kEndM = 2, kElse = 3 };

// Codes of the percent keywords that act, and of the percent functions.
enum : int {
  kPercentDefine = 52,
  kPercentEval = 55,
  kPercentEqs = 56,
  kPercentNes = 57,
  kPercentLts = 58,
  kPercentLes = 59,
  kPercentGts = 60,
  kPercentGes = 61,
  kPercentIf = 62,
  kPercentLen = 66,
  kPercentMatch = 67,
};

}  // namespace ta51
