// The BANK clause of SEGMENT and the records of code banks.
#pragma once

#include <cstdint>
#include <span>

#include "core/assembler.h"
#include "core/keyword_tables.h"

namespace ta51 {

// Reads the BANK clause at the read offset, if one stands there, in both
// passes. False after an error. `bank` is the segment's bank, none without a
// clause; the first pass makes or finds the entry, the second only parses.
bool ParseBankClause(Assembler& as, int32_t type, BankRecord*& bank);
// Numbers the banks in the order of their list, behind the last segment.
void NumberBanks(Assembler& as);
// NC (once per method), the bank's ST and ASM, ahead of its first segment.
void WriteBankRecords(Assembler& as, BankRecord& bank);
// BANK and the switching words, for tools that list the words of the language.
std::span<const KeywordRow> BankClauseKeywords();

}  // namespace ta51
