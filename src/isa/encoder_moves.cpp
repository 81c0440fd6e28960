// MOV, MOVC and MOVX. The MOV opcodes form a grid: a row chosen by where the
// value comes from (or goes to) and a column by the other operand.
#include <cstring>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "isa/encoder_forms.h"
#include "isa/operands.h"

namespace ta51 {

namespace {

constexpr uint8_t kRowFromImmediate = 0x70;    // MOV x,#v
constexpr uint8_t kRowToDirect = 0x80;         // MOV d,x
constexpr uint8_t kRowFromDirect = 0xA0;       // MOV Rn/@Ri,d
constexpr uint8_t kRowToAccumulator = 0xE0;    // MOV A,x
constexpr uint8_t kRowFromAccumulator = 0xF0;  // MOV x,A

constexpr int kColumnAccumulator = 4;
constexpr int kColumnDirect = 5;
constexpr int kColumnIndirect = 6;  // + i
constexpr int kColumnRegister = 8;  // + n

constexpr uint8_t kMovDptr = 0x90;
constexpr uint8_t kMovCarryFromBit = 0xA2;
constexpr uint8_t kMovBitFromCarry = 0x92;
constexpr uint8_t kMovcFromPc = 0x83;

constexpr uint8_t kMovxWrite = 0x10;    // @x,A lies above A,@x
constexpr uint8_t kMovxByRegister = 2;  // @Ri (+i) lies above @DPTR

uint8_t Grid(uint8_t row, int column) { return static_cast<uint8_t>(row + column); }

int MovToAccumulator(Assembler& as) {
  if (NextIs(as, '@')) {
    int i = ReadIndirectRegister(as, LastOperandEnd);
    return Emit(as, Grid(kRowToAccumulator, kColumnIndirect + i));
  }
  int n = 0;
  if (ReadRegister(as, LastOperandEnd, n)) return Emit(as, Grid(kRowToAccumulator, kColumnRegister + n));
  if (NextIs(as, '#'))
    return Emit(as, Grid(kRowFromImmediate, kColumnAccumulator), ReadByteOperand(as, as.OperandSlot1, kImmediateValue));
  // The accumulator by its register name has a short form; the direct one is refused.
  if (MatchToken(as, "ACC?", LastOperandEnd)) return ReportError(as, 77);
  return Emit(as, Grid(kRowToAccumulator, kColumnDirect), ReadByteOperand(as, as.OperandSlot1, kDirectAddress));
}

// MOV Rn,x and MOV @Ri,x; the comma has been read.
int MovToRegister(Assembler& as, int column) {
  if (IsAccumulator(as)) return Emit(as, Grid(kRowFromAccumulator, column));
  if (NextIs(as, '#'))
    return Emit(as, Grid(kRowFromImmediate, column), ReadByteOperand(as, as.OperandSlot1, kImmediateValue));
  return Emit(as, Grid(kRowFromDirect, column), ReadByteOperand(as, as.OperandSlot1, kDirectAddress));
}

int MovToDptr(Assembler& as) {
  if (!ExpectComma(as)) return 0;
  if (!NextIs(as, '#')) return ReportError(as, 60);
  int32_t value = ReadWordOperand(as, as.OperandSlot1, kPlainWord);
  return Emit(as, kMovDptr, value >> 8, value);
}

int MovToCarry(Assembler& as) {
  if (!ExpectComma(as)) return 0;
  return Emit(as, kMovCarryFromBit, ReadBitOperand(as));
}

// A bit operand can look like anything, so MOV b,C is told by its source.
bool CarryIsSource(Assembler& as) {
  const char* comma = std::strchr(as.Line.Here(), ',');
  if (comma == nullptr) return false;
  int32_t start = as.Line.offset;
  as.Line.offset = static_cast<int32_t>(comma - as.Line.text.c_str()) + 1;
  SkipBlanks(as);
  bool carry = MatchToken(as, "C?", LastOperandEnd);
  as.Line.offset = start;
  return carry;
}

int MovFromCarry(Assembler& as) {
  int32_t bit = ReadBitOperand(as);
  if (as.LineHasError || !ExpectComma(as)) return 0;
  SkipBlanks(as);
  if (!MatchToken(as, "C?", LastOperandEnd)) return ReportError(as, 11);
  return Emit(as, kMovBitFromCarry, bit);
}

int MovToDirect(Assembler& as) {
  int32_t destination = ReadByteOperand(as, as.OperandSlot1, kDirectAddress);
  if (as.LineHasError || !ExpectComma(as)) return 0;
  if (IsAccumulator(as)) return Emit(as, Grid(kRowFromAccumulator, kColumnDirect), destination);
  int n = 0;
  if (ReadRegister(as, LastOperandEnd, n)) return Emit(as, Grid(kRowToDirect, kColumnRegister + n), destination);
  if (NextIs(as, '@')) {
    int i = ReadIndirectRegister(as, LastOperandEnd);
    return Emit(as, Grid(kRowToDirect, kColumnIndirect + i), destination);
  }
  if (NextIs(as, '#')) {
    int32_t value = ReadByteOperand(as, as.OperandSlot2, kImmediateValue);
    return Emit(as, Grid(kRowFromImmediate, kColumnDirect), destination, value);
  }
  // MOV d2,d1 stores the source first, so the destination's field moves
  // to the second slot before the source is read into the first.
  as.OperandSlot2 = as.OperandSlot1;
  int32_t source = ReadByteOperand(as, as.OperandSlot1, kDirectAddress);
  return Emit(as, Grid(kRowToDirect, kColumnDirect), source, destination);
}

}  // namespace

int EncodeMov(const Statement& s) {
  Assembler& as = s.as;
  if (IsAccumulatorComma(as)) return MovToAccumulator(as);
  int n = 0;
  if (ReadRegister(as, InnerOperandEnd, n)) {
    if (!NextIs(as, ',')) return ReportError(as, 20);
    return MovToRegister(as, kColumnRegister + n);
  }
  if (NextIs(as, '@')) {
    int i = ReadIndirectRegister(as, InnerOperandEnd);
    if (as.LineHasError || !ExpectComma(as)) return 0;
    return MovToRegister(as, kColumnIndirect + i);
  }
  if (MatchToken(as, "DPTR?", CommaOrBlank)) return MovToDptr(as);
  if (MatchToken(as, "C?", CommaOrBlank)) return MovToCarry(as);
  if (CarryIsSource(as)) return MovFromCarry(as);
  return MovToDirect(as);
}

// MOVC A,@A+DPTR and MOVC A,@A+PC.
int EncodeMovc(const Statement& s) {
  Assembler& as = s.as;
  if (!IsAccumulatorComma(as)) return ReportError(as, 11);
  if (!NextIs(as, '@')) return ReportError(as, 79);
  if (!MatchAccumulator(as, PlusOrBlank)) return ReportError(as, 75);
  if (!NextIs(as, '+')) return ReportError(as, 80);
  SkipBlanks(as);
  if (MatchToken(as, "PC?", LastOperandEnd)) return Emit(as, kMovcFromPc);
  if (MatchToken(as, "DPTR?", LastOperandEnd)) return Emit(as, s.base);
  return ReportError(as, 11);
}

// MOVX between A and external memory through @DPTR or @Ri.
int EncodeMovx(const Statement& s) {
  Assembler& as = s.as;
  if (IsAccumulatorComma(as)) {
    if (!NextIs(as, '@')) return ReportError(as, 79);
    if (MatchToken(as, "DPTR?", LastOperandEnd)) return Emit(as, s.base);
    return Emit(as, static_cast<uint8_t>(s.base + kMovxByRegister + ReadIndirectRegister(as, LastOperandEnd)));
  }
  int offset = kMovxWrite;
  if (!MatchToken(as, "@DPTR?", CommaOrBlank)) {
    if (!NextIs(as, '@')) return ReportError(as, 11);
    offset += kMovxByRegister + ReadIndirectRegister(as, InnerOperandEnd);
    if (as.LineHasError) return 0;
  }
  if (!ExpectComma(as)) return 0;
  if (!IsAccumulator(as)) return ReportError(as, 75);
  return Emit(as, static_cast<uint8_t>(s.base + offset));
}

}  // namespace ta51
