#include "core/keyword_tables.h"

#include "core/keyword_index.h"

#include "core/statement.h"

namespace ta51 {

namespace {

constexpr KeywordRow kDataRows[] = {
    {"DB", 4},    {"DW", 5},     {"DS", 6},     {"DBIT", 35},  {"BIT", 34},
    {"DATA", 36}, {"XDATA", 37}, {"IDATA", 38}, {"CODE", 39},  {"USING", 40},
};

constexpr KeywordRow kGeneralRows[] = {
    {"FIELDS", 0},     {"PAGEWIDTH", 1},   {"OPT", 2},         {"ORG", 3},       {"NAME", 18},
    {"NAM", 18},       {"PAGE", 19},       {"TTL", 20},        {"END", 21},      {"SPC", 22},
    {"FAIL", 23},      {"INCLUDE", 24},    {"INCLUDELIB", 25}, {"__SFILE", 26},  {"__SLINE", 27},
    {"__DEBUG", 28},   {"__DEBUGEND", 29}, {"__NOOVL", 30},    {"EVEN", 31},     {"ALIGN", 32},
    {"EXTRN", 42},     {"PUBLIC", 41},     {"SEGMENT", 45},    {"RSEG", 51},     {"CSEG", 46},
    {"DSEG", 47},      {"XSEG", 48},       {"ISEG", 49},       {"BSEG", 50},
};

constexpr KeywordRow kDollarRows[] = {
    {"$EJECT", 19}, {"$TITLE", 20}, {"$SAVE", 7},   {"$RESTORE", 8}, {"$NOLIST", 15},
    {"$LIST", 16},  {"$SET", 9},    {"$RESET", 10}, {"$IF", 11},     {"$ELSEIF", 14},
    {"$ELSE", 13},  {"$ENDIF", 12}, {"$INCLUDE", 24}, {"$REGISTERBANK", 17},
};

constexpr KeywordRow kPercentRows[] = {
    {"%*DEFINE", 52}, {"%METACHAR", 53}, {"%SET", 54}, {"%EVAL", 55},   {"%EQS", 56},   {"%NES", 57},
    {"%LTS", 58},     {"%LES", 59},      {"%GTS", 60}, {"%GES", 61},    {"%IF", 62},    {"%WHILE", 63},
    {"%REPEAT", 64},  {"%EXIT", 65},     {"%LEN", 66}, {"%MATCH", 67},  {"%IN", 68},    {"%OUT", 69},
};

constexpr KeywordRow kPercentFunctionRows[] = {
    {"%EVAL", 55},
    {"%EQS", 56},
    {"%NES", 57},
    {"%LTS", 58},
    {"%LES", 59},
    {"%GTS", 60},
    {"%GES", 61},
    {"%LEN", 66},
    {"%MATCH", 67},
};

constexpr KeywordRow kIfRows[] = {
    {"IFC", 1},   {"IFNC", 2},  {"IFGT", 3},  {"IFGE", 4},   {"IFLT", 5},   {"IFLE", 6},
    {"IFEQ", 7},  {"IFNE", 8},  {"IFIC", 9},  {"IFINC", 10}, {"IFDEF", 11}, {"IFNDEF", 12},
};

constexpr KeywordRow kEndRows[] = {
    {"ENDC", 1}, {"ENDM", 2}, {".ENDM", 2}, {"ELSE", 3}, {"ELSEC", 3},
};

constexpr KeywordRow kDefiningRows[] = {
    {"MACR", kResultMacro}, {"MACRO", kResultMacro}, {".MACRO", kResultDotMacro},
    {"EQU", kResultEqu},    {".EQU", kResultDotEqu}, {"SET", kResultSet},
};

static_assert(std::size(kDataRows) == 10 && std::size(kGeneralRows) == 29 && std::size(kDollarRows) == 14);
static_assert(std::size(kPercentRows) == 18 && std::size(kIfRows) == 12 && std::size(kEndRows) == 5);
static_assert(std::size(kPercentFunctionRows) == 9);

constexpr std::string_view KeywordOf(const KeywordRow& row) { return row.keyword; }

// The statement reader looks for the defining words before the conditional
// ones, which is the same only while no word stands in both.
template <size_t N, size_t M>
constexpr bool Disjoint(const KeywordRow (&a)[N], const KeywordRow (&b)[M]) {
  for (const KeywordRow& x : a)
    for (const KeywordRow& y : b)
      if (KeywordOf(x) == KeywordOf(y)) return false;
  return true;
}
static_assert(Disjoint(kDefiningRows, kIfRows) && Disjoint(kDefiningRows, kEndRows));

template <size_t N>
using IndexFor = KeywordIndex<KeywordSlots(N)>;

constexpr IndexFor<std::size(kDataRows)> kDataIndex(kDataRows, KeywordOf);
constexpr IndexFor<std::size(kGeneralRows)> kGeneralIndex(kGeneralRows, KeywordOf);
constexpr IndexFor<std::size(kDollarRows)> kDollarIndex(kDollarRows, KeywordOf);
constexpr IndexFor<std::size(kPercentRows)> kPercentIndex(kPercentRows, KeywordOf);
constexpr IndexFor<std::size(kPercentFunctionRows)> kPercentFunctionIndex(kPercentFunctionRows, KeywordOf);
constexpr IndexFor<std::size(kIfRows)> kIfIndex(kIfRows, KeywordOf);
constexpr IndexFor<std::size(kEndRows)> kEndIndex(kEndRows, KeywordOf);
constexpr IndexFor<std::size(kDefiningRows)> kDefiningIndex(kDefiningRows, KeywordOf);

const KeywordRow* Find(const KeywordTable& table, std::string_view word, uint32_t hash, bool ignoreCase) {
  int row = FindIndexedKeyword(table.index, table.rows, KeywordOf, word, hash, ignoreCase);
  return row < 0 ? nullptr : &table.rows[static_cast<size_t>(row)];
}

}  // namespace

const KeywordTable kDataDirectives = {kDataRows, kDataIndex.slots};
const KeywordTable kGeneralDirectives = {kGeneralRows, kGeneralIndex.slots};
const KeywordTable kDollarControls = {kDollarRows, kDollarIndex.slots};
const KeywordTable kPercentKeywords = {kPercentRows, kPercentIndex.slots};
const KeywordTable kPercentFunctions = {kPercentFunctionRows, kPercentFunctionIndex.slots};
const KeywordTable kIfKeywords = {kIfRows, kIfIndex.slots};
const KeywordTable kEndKeywords = {kEndRows, kEndIndex.slots};
const KeywordTable kDefiningKeywords = {kDefiningRows, kDefiningIndex.slots};

const KeywordRow* FindKeyword(const KeywordTable& table, std::string_view word, uint32_t hash) {
  return Find(table, word, hash, false);
}

const KeywordRow* FindKeyword(const KeywordTable& table, std::string_view word) {
  return Find(table, word, KeywordHash(word), false);
}

const KeywordRow* FindKeywordIgnoringCase(const KeywordTable& table, std::string_view word) {
  return Find(table, word, KeywordHash(word), true);
}

}  // namespace ta51
