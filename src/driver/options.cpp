#include "core/option_keywords.h"


#include "core/diagnostics.h"
#include "core/keyword_index.h"
#include "isa/predefined.h"

namespace ta51 {

namespace {

constexpr OptionRow kOptionKeywords[] = {
    {"CLIST", 0},   {"NOCLIST", 1}, {"MC", 6},      {"NOMC", 7},    {"MD", 8},      {"NOMD", 9},
    {"MEX", 10},    {"NOMEX", 11},  {"OBJ", 12},    {"NOOBJ", 13},  {"OBJOFF", 28}, {"O", 12},
    {"NO", 13},     {"NOPAGE", 14}, {"PAGE", 26},   {"SEQ", 16},    {"NOSEQ", 17},  {"SYM", 18},
    {"S", 18},      {"UNA", 19},    {"U", 19},      {"NOUNA", 20},  {"NOU", 20},    {"LIST", 21},
    {"L", 21},      {"NOLIST", 22}, {"NOCASE", 23}, {"NOL", 22},    {"IHEX", 24},   {"INPAGE", 30},
    {"8051", 31},   {"8052", 32},   {"80535", 33},  {"MOD51", 34},  {"NOMOD51", 35}, {"BIN", 25},
    {"LISTF", 27},  {"DEBUG", 36},  {"NODEBUG", 37},
};
static_assert(sizeof kOptionKeywords / sizeof kOptionKeywords[0] == 39);
// A statement's opcode word is tried as EQU, SET or MACRO before it is tried
// as an option keyword, which is the same only while none is both.
static_assert([] {
  for (const OptionRow& row : kOptionKeywords)
    for (std::string_view defining : {"MACR", "MACRO", ".MACRO", "EQU", ".EQU", "SET"})
      if (row.keyword == defining) return false;
  return true;
}());

constexpr std::string_view OptionKeywordOf(const OptionRow& row) { return row.keyword; }
constexpr KeywordIndex<KeywordSlots(std::size(kOptionKeywords))> kOptionIndex(kOptionKeywords, OptionKeywordOf);

void SetUnlessSecondPass(Assembler& as, OptionFlag& flag, int value) {
  if (!as.SecondPass) SetOptionFlag(as, flag, value);
}

}  // namespace

std::span<const OptionRow> OptionKeywords() { return kOptionKeywords; }

int FindOption(std::string_view word) { return FindOption(word, KeywordHash(word)); }

int FindOption(std::string_view word, uint32_t hash) {
  int row = FindIndexedKeyword(std::span<const uint16_t>(kOptionIndex.slots), std::span<const OptionRow>(kOptionKeywords),
                               OptionKeywordOf, word, hash, true);
  return row < 0 ? kNoOption : kOptionKeywords[row].code;
}

int SetOptionFlag(Assembler& as, OptionFlag& flag, int value) {
  if (as.CommandLinePhase) {
    flag.bits = static_cast<uint32_t>(value & 0x7F) | 0x80;
    return 1;
  }
  if (flag.Locked()) return 0;
  flag.bits = static_cast<uint32_t>(value & 0x7F);
  return 1;
}

int ProcessOption(Assembler& as, int code) {
  if (!as.CommandLinePhase && as.LineHasLabel) return ReportError(as, 56);
  as.ShowLineValue = false;
  OptionFlags& o = as.opt;
  switch (code) {
    case 0: SetOptionFlag(as, o.CLIST, 1); break;
    case 1: SetOptionFlag(as, o.CLIST, 0); break;
    case 6: SetOptionFlag(as, o.MC, 1); break;
    case 7: SetOptionFlag(as, o.MC, 0); break;
    case 8: SetOptionFlag(as, o.MD, 1); break;
    case 9: SetOptionFlag(as, o.MD, 0); break;
    case 10: SetOptionFlag(as, o.MEX, 1); break;
    case 11: SetOptionFlag(as, o.MEX, 0); break;
    case 12: SetUnlessSecondPass(as, o.OBJ, 1); break;
    case 13: SetUnlessSecondPass(as, o.OBJ, 0); break;
    case 14: SetUnlessSecondPass(as, o.PAGE, 0); break;
    case 26: SetUnlessSecondPass(as, o.PAGE, 1); break;
    case 16: if (as.SequenceNumbered) SetOptionFlag(as, o.SEQ, 1); break;
    case 17: SetOptionFlag(as, o.SEQ, 0); break;
    case 18: SetOptionFlag(as, o.SYM, 1); break;
    case 19: SetOptionFlag(as, o.UNA, 1); break;
    case 20: SetOptionFlag(as, o.UNA, 0); break;
    case 21:
      if ((as.SecondPass && !as.CommandLinePhase) || o.LISTF) SetOptionFlag(as, o.LIST, 1);
      break;
    case 22: SetOptionFlag(as, o.LIST, 0); break;
    case 23: SetOptionFlag(as, o.NOCASE, 1); break;
    case 24: SetOptionFlag(as, o.IHEX, 1); break;
    case 25: SetOptionFlag(as, o.IHEX, 0); break;
    case 27:
      SetOptionFlag(as, o.LISTF, 1);
      SetOptionFlag(as, o.LIST, 1);
      break;
    case 28:
      // Past the lock: from here on nothing more goes to the object file.
      if (as.SecondPass && !o.IHEX) o.OBJ.bits = 0;
      break;
    case 30: SetOptionFlag(as, o.InPageOption, 1); break;
    case 31: SetOptionFlag(as, o.ProcessorMode, 0); break;
    case 32:
      SetOptionFlag(as, o.ProcessorMode, 1);
      if (!as.CommandLinePhase) EnterAllPredefinedSymbols(as, true);
      break;
    case 33: SetOptionFlag(as, o.ProcessorMode, 2); break;
    case 34: SetOptionFlag(as, o.PredefinedSymbolsEnabled, 1); break;
    case 35: SetOptionFlag(as, o.PredefinedSymbolsEnabled, 0); break;
    case 36: SetOptionFlag(as, o.DEBUG, 1); break;
    case 37: SetOptionFlag(as, o.DEBUG, 0); break;
    default: break;
  }
  return 2;
}

}  // namespace ta51
