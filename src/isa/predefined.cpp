#include "isa/predefined.h"

#include <cctype>
#include <span>
#include <string>

#include "symbols/symbols.h"
#include "isa/operands.h"

namespace ta51 {

namespace {

// Special function registers of the 8051 core.
constexpr PredefinedName kCoreRegisters[] = {
    {"ACC", T_DATA, 0xE0},
    {"B", T_DATA, 0xF0},
    {"DPH", T_DATA, 0x83},
    {"DPL", T_DATA, 0x82},
    {"IE", T_DATA, 0xA8},
    {"IP", T_DATA, 0xB8},
    {"PCON", T_DATA, 0x87},
    {"P0", T_DATA, 0x80},
    {"P1", T_DATA, 0x90},
    {"P2", T_DATA, 0xA0},
    {"P3", T_DATA, 0xB0},
    {"PSW", T_DATA, 0xD0},
    {"SBUF", T_DATA, 0x99},
    {"SCON", T_DATA, 0x98},
    {"TCON", T_DATA, 0x88},
    {"TH0", T_DATA, 0x8C},
    {"TH1", T_DATA, 0x8D},
    {"TL0", T_DATA, 0x8A},
    {"TL1", T_DATA, 0x8B},
    {"TMOD", T_DATA, 0x89},
    {"SP", T_DATA, 0x81},
};

// Addressable bits of the 8051 core.
constexpr PredefinedName kCoreBits[] = {
    {"CY", T_BIT, 0xD7},
    {"AC", T_BIT, 0xD6},
    {"F0", T_BIT, 0xD5},
    {"RS1", T_BIT, 0xD4},
    {"RS0", T_BIT, 0xD3},
    {"OV", T_BIT, 0xD2},
    {"P", T_BIT, 0xD0},
    {"TF1", T_BIT, 0x8F},
    {"TR1", T_BIT, 0x8E},
    {"TF0", T_BIT, 0x8D},
    {"TR0", T_BIT, 0x8C},
    {"IE1", T_BIT, 0x8B},
    {"IT1", T_BIT, 0x8A},
    {"IE0", T_BIT, 0x89},
    {"IT0", T_BIT, 0x88},
    {"SM0", T_BIT, 0x9F},
    {"SM1", T_BIT, 0x9E},
    {"SM2", T_BIT, 0x9D},
    {"REN", T_BIT, 0x9C},
    {"TB8", T_BIT, 0x9B},
    {"RB8", T_BIT, 0x9A},
    {"TI", T_BIT, 0x99},
    {"RI", T_BIT, 0x98},
    {"EA", T_BIT, 0xAF},
    {"ES", T_BIT, 0xAC},
    {"ET1", T_BIT, 0xAB},
    {"EX1", T_BIT, 0xAA},
    {"ET0", T_BIT, 0xA9},
    {"EX0", T_BIT, 0xA8},
    {"RD", T_BIT, 0xB7},
    {"WR", T_BIT, 0xB6},
    {"T1", T_BIT, 0xB5},
    {"T0", T_BIT, 0xB4},
    {"INT1", T_BIT, 0xB3},
    {"INT0", T_BIT, 0xB2},
    {"TXD", T_BIT, 0xB1},
    {"RXD", T_BIT, 0xB0},
    {"PS", T_BIT, 0xBC},
    {"PT1", T_BIT, 0xBB},
    {"PX1", T_BIT, 0xBA},
    {"PT0", T_BIT, 0xB9},
    {"PX0", T_BIT, 0xB8},
};

// Timer 2 of the 8052: bits first, then registers.
constexpr PredefinedName kAdditions8052[] = {
    {"TF2", T_BIT, 0xCF},
    {"EXF2", T_BIT, 0xCE},
    {"RCLK", T_BIT, 0xCD},
    {"TCLK", T_BIT, 0xCC},
    {"EXEN2", T_BIT, 0xCB},
    {"TR2", T_BIT, 0xCA},
    {"C_T2", T_BIT, 0xC9},
    {"CP_RL2", T_BIT, 0xC8},
    {"ET2", T_BIT, 0xAD},
    {"T2CON", T_DATA, 0xC8},
    {"TH2", T_DATA, 0xCD},
    {"TL2", T_DATA, 0xCC},
    {"RLDH", T_DATA, 0xCB},
    {"RLDL", T_DATA, 0xCA},
};

constexpr int kBankRegisterCount = 8;
constexpr int kRegisterCodeNames = 9;  // A, R0..R7

std::string ToLower(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

void EnterName(Assembler& as, const std::string& name, int32_t type, int32_t value) {
  // With NOCASE folding the lower-case half onto the upper one, the name is
  // already there; entering it again would be a duplicate of our own making.
  SymbolEntry* existing = FindSymbol(as, name);
  if (existing != nullptr && (existing->flags & kSymPredefined) != 0) return;
  SymbolDefinition definition;
  definition.value = value;
  definition.type = type;
  definition.checkReserved = false;
  definition.predefined = true;
  DefineSymbol(as, name.c_str(), definition);
}

void EnterTable(Assembler& as, std::span<const PredefinedName> table, bool lowerCase) {
  for (const PredefinedName& row : table)
    EnterName(as, lowerCase ? ToLower(row.name) : std::string(row.name), row.type, row.value);
}

}  // namespace

const char* const kRegisterNames[17] = {"A",   "R0",  "R1",  "R2",  "R3",  "R4",  "R5",  "R6", "R7",
                                        "AR0", "AR1", "AR2", "AR3", "AR4", "AR5", "AR6", "AR7"};

const std::span<const PredefinedName> kPredefinedTables[3] = {kCoreRegisters, kCoreBits, kAdditions8052};

bool IsRegisterName(std::string_view name) {
  for (const char* registerName : kRegisterNames)
    if (name == registerName) return true;
  return false;
}

void EnterPredefinedSymbols(Assembler& as, bool additionsOnly, bool lowerCase) {
  if (!as.opt.PredefinedSymbolsEnabled) return;
  if (!additionsOnly) {
    EnterTable(as, kCoreBits, lowerCase);
    EnterTable(as, kCoreRegisters, lowerCase);
  }
  bool& entered = as.Additions8052Entered[lowerCase ? 1 : 0];
  if (as.opt.ProcessorMode.Value() == 1 && !entered) {
    EnterTable(as, kAdditions8052, lowerCase);
    entered = true;
  }
}

void EnterAllPredefinedSymbols(Assembler& as, bool additionsOnly) {
  EnterPredefinedSymbols(as, additionsOnly, false);
  EnterPredefinedSymbols(as, additionsOnly, true);
}

void EnterBankRegisters(Assembler& as, int bank) {
  for (int n = 0; n < kBankRegisterCount; ++n) {
    SymbolDefinition definition;
    definition.value = bank * kBankRegisterCount + n;
    definition.type = T_DATA;
    definition.checkReserved = false;
    definition.settable = true;  // every USING gives them new values
    definition.predefined = true;
    DefineSymbol(as, kRegisterNames[kRegisterCodeNames + n], definition);
  }
}

// A (code 1) or R0..R7 (codes 2 to 9), in any case, followed by one of the
// delimiters or the end of the line; the delimiter stays unread.
int RegisterOperand(Assembler& as, std::string_view delimiters) {
  static_assert(kRegisterCodeNames == 9, "A and R0..R7");
  const char* here = as.Line.Here();
  auto ends = [delimiters](char c) { return c == '\0' || delimiters.find(c) != std::string_view::npos; };
  char first = here[0] >= 'a' && here[0] <= 'z' ? static_cast<char>(here[0] - 32) : here[0];
  if (first == 'A' && ends(here[1])) {
    as.Line.offset += 1;
    return 1;
  }
  if (first == 'R' && here[1] >= '0' && here[1] <= '7' && ends(here[2])) {
    as.Line.offset += 2;
    return 2 + (here[1] - '0');
  }
  return -1;
}

}  // namespace ta51
