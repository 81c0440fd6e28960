#include "isa/encoder.h"

#include <array>
#include <cstdio>

#include "core/diagnostics.h"
#include "core/instruction_stream.h"
#include "core/keyword_index.h"
#include "core/statement.h"
#include "directives/segments.h"
#include "isa/encoder_forms.h"
#include "isa/operands.h"
#include "textlang/textlang.h"

namespace ta51 {

constexpr Mnemonic kMnemonicRows[45] = {
    {"NOP", 0x00},   {"RET", 0x22},  {"RETI", 0x32}, {"RL", 0x23},    {"RLC", 0x33},  {"RR", 0x03},
    {"RRC", 0x13},   {"SWAP", 0xC4}, {"DA", 0xD4},   {"POP", 0xD0},   {"PUSH", 0xC0}, {"ACALL", 0x11},
    {"AJMP", 0x01},  {"XCHD", 0xD6}, {"XCH", 0xC0},  {"ADD", 0x20},   {"ADDC", 0x30}, {"SUBB", 0x90},
    {"XRL", 0x60},   {"ANL", 0x50},  {"ORL", 0x40},  {"CJNE", 0xB0},  {"SETB", 0xD0}, {"CLR", 0xC0},
    {"CPL", 0xB0},   {"DEC", 0x10},  {"INC", 0x00},  {"DIV", 0x84},   {"MUL", 0xA4},  {"DJNZ", 0xD0},
    {"JB", 0x20},    {"JBC", 0x10},  {"JNB", 0x30},  {"JC", 0x40},    {"JNC", 0x50},  {"JNZ", 0x70},
    {"JZ", 0x60},    {"SJMP", 0x80}, {"JMP", 0x73},  {"CALL", 0x11},  {"LCALL", 0x12}, {"LJMP", 0x02},
    {"MOVC", 0x93},  {"MOVX", 0xE0}, {"MOV", 0x00},
};
const Mnemonic (&kMnemonics)[45] = kMnemonicRows;

namespace {
constexpr std::string_view WordOf(const Mnemonic& row) { return row.word; }
constexpr KeywordIndex<KeywordSlots(std::size(kMnemonicRows))> kMnemonicIndex(kMnemonicRows, WordOf);
}  // namespace

int FindMnemonic(std::string_view word, uint32_t hash) {
  return FindIndexedKeyword(std::span<const uint16_t>(kMnemonicIndex.slots), std::span<const Mnemonic>(kMnemonicRows),
                            WordOf, word, hash, false);
}

namespace {

int EncodeNoOperand(const Statement&) { return 1; }

// RL A, RLC A, RR A, RRC A, SWAP A, DA A.
int EncodeAccumulatorOnly(const Statement& s) {
  if (!IsAccumulator(s.as)) return ReportError(s.as, 75);
  return 1;
}

// PUSH d, POP d.
int EncodeStack(const Statement& s) {
  int32_t address = ReadByteOperand(s.as, s.as.OperandSlot1, kDirectAddress);
  return Emit(s.as, s.base, address);
}

// DIV AB, MUL AB.
int EncodeMultiply(const Statement& s) {
  if (!MatchToken(s.as, "AB?", LastOperandEnd)) return ReportError(s.as, 11);
  return 1;
}

using FormHandler = int (*)(const Statement&);

struct HandlerRange {
  int first;
  int last;
  FormHandler handler;
};

// Mnemonic positions and the handler that reads their operands.
constexpr HandlerRange kHandlers[] = {
    {0, 2, EncodeNoOperand},         // NOP RET RETI
    {3, 8, EncodeAccumulatorOnly},   // RL RLC RR RRC SWAP DA
    {9, 10, EncodeStack},            // POP PUSH
    {11, 12, EncodeAbsoluteJump},    // ACALL AJMP
    {13, 17, EncodeArithmetic},      // XCHD XCH ADD ADDC SUBB
    {18, 20, EncodeLogic},           // XRL ANL ORL
    {21, 21, EncodeCompareJump},     // CJNE
    {22, 24, EncodeBitOperation},    // SETB CLR CPL
    {25, 26, EncodeIncrement},       // DEC INC
    {27, 28, EncodeMultiply},        // DIV MUL
    {29, 29, EncodeDecrementJump},   // DJNZ
    {30, 32, EncodeBitJump},         // JB JBC JNB
    {33, 37, EncodeShortBranch},     // JC JNC JNZ JZ SJMP
    {38, 39, EncodeGenericJump},     // JMP CALL
    {40, 41, EncodeLongJump},        // LCALL LJMP
    {42, 42, EncodeMovc},            // MOVC
    {43, 43, EncodeMovx},            // MOVX
    {44, 44, EncodeMov},             // MOV
};

// The handler of each mnemonic position, found by index rather than by a
// search of the ranges.
constexpr auto kHandlerOfPosition = [] {
  std::array<FormHandler, std::size(kMnemonicRows)> handlers{};
  for (const HandlerRange& range : kHandlers)
    for (int position = range.first; position <= range.last; ++position) handlers[static_cast<size_t>(position)] = range.handler;
  return handlers;
}();

// The length the first pass chose; the stream advances at every instruction
// so that it stays in step with the source.
int ReadSizeByte(Assembler& as) {
  if (!as.SecondPass) {
    as.NeedsSizeByte = true;
    return 0;
  }
  return TakeInstructionRecord(as);
}

}  // namespace

int Emit(Assembler& as, uint8_t opcode) {
  as.CodeBuffer[0] = opcode;
  as.CodeLength = 1;
  return 1;
}

int Emit(Assembler& as, uint8_t opcode, int32_t second) {
  as.CodeBuffer[0] = opcode;
  as.CodeBuffer[1] = static_cast<uint8_t>(second);
  as.CodeLength = 2;
  return 1;
}

int Emit(Assembler& as, uint8_t opcode, int32_t second, int32_t third) {
  Emit(as, opcode, second);
  as.CodeBuffer[2] = static_cast<uint8_t>(third);
  as.CodeLength = 3;
  return 1;
}

int EncodeInstruction(Assembler& as, uint8_t baseOpcode, int position) {
  if (as.CurrentSegment == nullptr) EnsureCurrentSegment(as);
  if (as.CurrentSegment == nullptr || as.CurrentSegment->type != T_CODE) return ReportError(as, 92);
  Statement statement{as, baseOpcode, position, ReadSizeByte(as)};
  Emit(as, baseOpcode);
  SkipBlanks(as);
  as.OperandOffset = as.Line.offset;
  // NOP, RET and RETI have no operand field for macro arguments.
  if (position >= 3 && as.InMacroExpansion) SubstituteParameters(as, as.Line.offset, true);
  FormHandler handler = position >= 0 && static_cast<size_t>(position) < kHandlerOfPosition.size()
                            ? kHandlerOfPosition[static_cast<size_t>(position)]
                            : nullptr;
  if (handler == nullptr) return ReportError(as, 26);
  int result = handler(statement);
  return as.LineHasError ? 0 : result;
}

}  // namespace ta51
