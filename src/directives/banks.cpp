// Code banks: the BANK clause of SEGMENT, `BANK,bank[,word,number]`, and the
// records that hand each bank and its switching method to the linker.
#include "directives/banks.h"

#include <string>
#include <string_view>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "directives/segments.h"
#include "output/object_file.h"
#include "symbols/expression.h"

namespace ta51 {

namespace {

constexpr const char* kClauseFollow = " \t\n,";

enum : uint8_t { kWordBank = 0, kWordPort = 1, kWordSfr = 2, kWordXdata = 3 };

constexpr KeywordRow kBankClauseRows[] = {
    {"BANK", kWordBank},
    {"PORT", kWordPort},
    {"SFR", kWordSfr},
    {"XDATA", kWordXdata},
};

// The word of a bank's name; none for the types that have no banks.
const char* TypeWord(int32_t type) {
  switch (type) {
    case T_CODE: return "CODE";
    case T_DATA: return "DATA";
    case T_XDATA: return "XDATA";
    default: return nullptr;
  }
}

bool Refuse(Assembler& as, int number, std::string_view detail = {}) {
  ReportError(as, number, true, detail);
  return false;
}

// A number of the clause. The first pass names the bank with it, so it must
// be known there: a name defined further down would name another bank.
bool ReadClauseNumber(Assembler& as, int32_t& value) {
  const int32_t errorsBefore = as.ErrorCount;
  value = EvaluateAbsolute(as);
  if (as.ErrorCount != errorsBefore) return false;
  if (as.ExprUndefined && !as.SecondPass) return Refuse(as, 33);
  return true;
}

// The switching word right behind the comma, blanks not passed over.
const KeywordRow* ReadSwitchingWord(Assembler& as) {
  for (const KeywordRow& row : kBankClauseRows)
    if (row.code != kWordBank && MatchKeyword(as, row.keyword, kClauseFollow)) return &row;
  return nullptr;
}

// The comma behind BANK. Another character in its place is reported and
// used up, and the number is read behind it; false when the line ends.
bool TakeBankComma(Assembler& as) {
  SkipBlanks(as);
  const char separator = as.Line.Peek();
  if (separator == '\n' || separator == '\0') return Refuse(as, 105);
  ++as.Line.offset;
  if (separator != ',') ReportError(as, 105);
  return true;
}

// `,word,number` behind the bank number, if a comma follows it.
bool ReadSwitching(Assembler& as, const char*& word, int32_t& portValue) {
  SkipBlanks(as);
  if (as.Line.Peek() != ',') return true;
  ++as.Line.offset;
  const KeywordRow* row = ReadSwitchingWord(as);
  if (row == nullptr) return Refuse(as, 107);
  word = row->keyword;
  SkipBlanks(as);
  if (as.Line.Peek() != ',') return Refuse(as, 108);
  ++as.Line.offset;
  return ReadClauseNumber(as, portValue);
}

BankControl& FindOrAddControl(BankState& state, const char* word) {
  for (BankControl& control : state.Controls)
    if (control.word == word) return control;
  BankControl& control = state.Controls.emplace_back();
  control.word = word;
  control.number = static_cast<int32_t>(state.Controls.size());
  return control;
}

BankRecord* FindOrAddBank(BankState& state, const std::string& name, uint32_t portValue, BankControl* control) {
  for (BankRecord& bank : state.Banks)
    if (bank.name == name && bank.portValue == portValue && bank.control == control) return &bank;
  BankRecord& bank = state.Banks.emplace_back();
  bank.name = name;
  bank.portValue = portValue;
  bank.control = control;
  return &bank;
}

}  // namespace

bool ParseBankClause(Assembler& as, int32_t type, BankRecord*& bank) {
  bank = nullptr;
  if (!MatchKeyword(as, kBankClauseRows[kWordBank].keyword, kClauseFollow)) return true;
  const char* typeWord = TypeWord(type);
  // Internal RAM and bits cannot be switched through a port: such a clause
  // is a mistake, not a bank.
  if (typeWord == nullptr) return Refuse(as, 89, "BANK takes a CODE, DATA or XDATA segment");
  if (!TakeBankComma(as)) return false;
  int32_t number = 0;
  if (!ReadClauseNumber(as, number)) return false;
  if (number < 0) return Refuse(as, 28);
  const char* word = "";
  int32_t portValue = 0;
  if (!ReadSwitching(as, word, portValue)) return false;
  if (as.LineHasError || as.SecondPass) return !as.LineHasError;
  BankControl& control = FindOrAddControl(as.Banks, word);
  std::string name = std::string("__").append(typeWord).append("_BANK").append(std::to_string(number));
  bank = FindOrAddBank(as.Banks, name, static_cast<uint32_t>(portValue), &control);
  return true;
}

void NumberBanks(Assembler& as) {
  const std::deque<SegmentEntry>& segments = as.Segments.entries;
  int32_t next = segments.empty() ? 0 : segments.back().number + 1;
  for (BankRecord& bank : as.Banks.Banks) bank.number = next++;
}

void WriteBankRecords(Assembler& as, BankRecord& bank) {
  BankControl& control = *bank.control;
  const bool worded = !control.word.empty();
  if (worded && !control.written)
    WriteCheckedRecord(as, "NC%X,%02X%s.\r\n", static_cast<uint32_t>(control.number),
                       static_cast<unsigned>(control.word.size()), control.word.c_str());
  control.written = true;
  WriteCheckedRecord(as, "ST%X,K,%02X%s,0,0,%X.\r\n", static_cast<uint32_t>(bank.number),
                     static_cast<unsigned>(bank.name.size()), bank.name.c_str(),
                     static_cast<uint32_t>(worded ? control.number : 0));
  if (worded) WriteCheckedRecord(as, "ASM%X,%X.\r\n", static_cast<uint32_t>(bank.number), bank.portValue);
  bank.written = true;
}

std::span<const KeywordRow> BankClauseKeywords() { return kBankClauseRows; }

}  // namespace ta51
