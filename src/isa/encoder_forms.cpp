// Arithmetic, logic, compare and bit instructions. Their forms sit at fixed
// offsets above the mnemonic's base opcode.
#include "isa/encoder_forms.h"

#include "core/diagnostics.h"
#include "isa/operands.h"

namespace ta51 {

namespace {

// INC/DEC A share the place that the immediate form has elsewhere.
constexpr uint8_t kFormAccumulator = kFormImmediate;
constexpr uint8_t kFormBit = 2;             // CLR/CPL/SETB b
constexpr uint8_t kFormCarry = 3;           // CLR/CPL/SETB C
constexpr uint8_t kFormCarryBit = 0x32;     // ANL/ORL C,b
constexpr uint8_t kFormCarryNotBit = 0x60;  // ANL/ORL C,/b
constexpr uint8_t kIncrementDptr = 0xA3;

struct FixedForm {
  int position;
  uint8_t opcode;
};

// CLR A and CPL A lie outside the layout of their mnemonics.
constexpr FixedForm kAccumulatorBitForms[] = {
    {kPosClr, 0xE4},
    {kPosCpl, 0xF4},
};

uint8_t Form(const Statement& s, int offset) { return static_cast<uint8_t>(s.base + offset); }

bool IsExchange(const Statement& s) { return s.position == kPosXch || s.position == kPosXchd; }

// What follows `A,`: #v, @Ri, Rn or a direct address.
int EncodeAccumulatorSource(const Statement& s) {
  Assembler& as = s.as;
  if (NextIs(as, '#')) {
    if (IsExchange(s)) return ReportError(as, 11);
    return Emit(as, Form(s, kFormImmediate), ReadByteOperand(as, as.OperandSlot1, kImmediateValue));
  }
  if (NextIs(as, '@')) {
    int i = ReadIndirectRegister(as, LastOperandEnd);
    // XCHD has no other form, and its base opcode is this one.
    return Emit(as, Form(s, (s.position == kPosXchd ? 0 : kFormIndirect) + i));
  }
  if (s.position == kPosXchd) return ReportError(as, 11);
  int n = 0;
  if (ReadRegister(as, LastOperandEnd, n)) return Emit(as, Form(s, kFormRegister + n));
  return Emit(as, Form(s, kFormDirect), ReadByteOperand(as, as.OperandSlot1, kDirectAddress));
}

// ANL C,b and ORL C,b, with `/` for the complemented bit.
int EncodeCarryLogic(const Statement& s) {
  Assembler& as = s.as;
  if (!NextIs(as, ',')) return ReportError(as, 20);
  bool complemented = NextIs(as, '/');
  int32_t bit = ReadBitOperand(as);
  return Emit(as, Form(s, complemented ? kFormCarryNotBit : kFormCarryBit), bit);
}

}  // namespace

// XCHD, XCH, ADD, ADDC, SUBB.
int EncodeArithmetic(const Statement& s) {
  if (!IsAccumulatorComma(s.as)) return ReportError(s.as, 75);
  return EncodeAccumulatorSource(s);
}

// XRL, ANL, ORL.
int EncodeLogic(const Statement& s) {
  Assembler& as = s.as;
  if (s.position != kPosXrl && MatchToken(as, "C?", InnerOperandEnd)) return EncodeCarryLogic(s);
  if (IsAccumulatorComma(as)) return EncodeAccumulatorSource(s);
  int32_t address = ReadByteOperand(as, as.OperandSlot1, kDirectAddress);
  if (as.LineHasError || !ExpectComma(as)) return 0;
  if (IsAccumulator(as)) return Emit(as, Form(s, kFormDirectA), address);
  if (!NextIs(as, '#')) return ReportError(as, 60);
  int32_t value = ReadByteOperand(as, as.OperandSlot2, kImmediateValue);
  return Emit(as, Form(s, kFormDirectImmediate), address, value);
}

// CJNE: A,#v / A,d / Rn,#v / @Ri,#v, then the target.
int EncodeCompareJump(const Statement& s) {
  Assembler& as = s.as;
  int offset = kFormImmediate;
  int mode = kImmediateValue;
  if (IsAccumulatorComma(as)) {
    if (!NextIs(as, '#')) {
      offset = kFormDirect;
      mode = kDirectAddress;
    }
  } else {
    if (NextIs(as, '@')) {
      offset = kFormIndirect + ReadIndirectRegister(as, InnerOperandEnd);
      if (as.LineHasError || !ExpectComma(as)) return 0;
    } else {
      int n = 0;
      if (!ReadRegister(as, InnerOperandEnd, n)) return ReportError(as, 76);
      if (!NextIs(as, ',')) return ReportError(as, 20);
      offset = kFormRegister + n;
    }
    if (!NextIs(as, '#')) return ReportError(as, 60);
  }
  int32_t value = ReadByteOperand(as, as.OperandSlot1, mode);
  if (as.LineHasError || !ExpectComma(as)) return 0;
  int32_t displacement = ReadRelativeOperand(as, 3);
  return Emit(as, Form(s, offset), value, displacement);
}

// SETB, CLR, CPL: A (not SETB), C, or a bit.
int EncodeBitOperation(const Statement& s) {
  Assembler& as = s.as;
  if (IsAccumulator(as)) {
    for (const FixedForm& form : kAccumulatorBitForms)
      if (form.position == s.position) return Emit(as, form.opcode);
    return ReportError(as, 11);
  }
  if (MatchToken(as, "C?", LastOperandEnd)) return Emit(as, Form(s, kFormCarry));
  return Emit(as, Form(s, kFormBit), ReadBitOperand(as));
}

// INC, DEC: DPTR (INC only), A, @Ri, Rn, d.
int EncodeIncrement(const Statement& s) {
  Assembler& as = s.as;
  if (s.position == kPosInc && MatchToken(as, "DPTR?", LastOperandEnd)) return Emit(as, kIncrementDptr);
  if (IsAccumulator(as)) return Emit(as, Form(s, kFormAccumulator));
  if (NextIs(as, '@')) return Emit(as, Form(s, kFormIndirect + ReadIndirectRegister(as, LastOperandEnd)));
  int n = 0;
  if (ReadRegister(as, LastOperandEnd, n)) return Emit(as, Form(s, kFormRegister + n));
  return Emit(as, Form(s, kFormDirect), ReadByteOperand(as, as.OperandSlot1, kDirectAddress));
}

}  // namespace ta51
