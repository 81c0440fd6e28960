// Branches and calls. The generic JMP and CALL pick their size in the first
// pass, from what is known there, and keep it: the label values of the
// second pass rest on that size.
#include "core/diagnostics.h"
#include "core/statement.h"
#include "isa/encoder.h"
#include "isa/encoder_forms.h"
#include "isa/operands.h"

namespace ta51 {

namespace {

constexpr uint8_t kShortJumpOpcode = 0x80;  // SJMP
constexpr uint8_t kLongFormStep = 1;        // LJMP/LCALL lie one above AJMP/ACALL
constexpr uint32_t kBlockMask = ~uint32_t{0x7FF};

// Rebuilds both bytes of AJMP/ACALL from a target the linker places: the
// address bits and the opcode's low five bits, with the 2K block check
// carried into bits above the two bytes.
constexpr const char* kAbsoluteJumpTemplate =
    "((((HIGH (%s)) SHL &13) AND FFFF) OR (LOW (%s)) OR %02X00 OR ((((HIGH (%s)) SHL &13) AND FFFF0000) XOR "
    "(((HIGH (%s)) SHL &13) AND FFFF0000)))";

bool FitsShortBranch(int32_t displacement) { return displacement >= -128 && displacement <= 127; }

int32_t DistanceFromNext(const Assembler& as, int32_t target, int instructionLength) {
  uint32_t next = as.CurrentSegment->location + static_cast<uint32_t>(instructionLength);
  return static_cast<int32_t>(static_cast<uint32_t>(target) - next);
}

void AddCallTarget(Assembler& as, const std::string& text) {
  as.CurrentSegment->CallTargetList.push_back(text);
  as.CurrentSegment->hasCallTargetList = true;
}

// The statement's own address, as the linker knows it.
std::string StatementAddress(const Assembler& as) {
  const SegmentEntry& segment = *as.CurrentSegment;
  if (segment.IsAbsolute()) return FormatText("%X", segment.location);
  return FormatText("R%X+%X", static_cast<uint32_t>(segment.number), segment.location);
}

// AJMP/ACALL bytes from the low eleven bits of the target, or the fixup that
// ReadAbsoluteTarget asked for.
int EmitAbsoluteJump(Assembler& as, uint8_t shortBase, int32_t target, bool isCall) {
  OperandSlot& slot = as.OperandSlot1;
  if (as.SecondPass && slot.FixupOffset == kWholeInstructionFixup) {
    if (isCall) AddCallTarget(as, slot.text);
    const char* t = slot.text.c_str();
    slot.text = FormatText(kAbsoluteJumpTemplate, t, t, static_cast<unsigned>(shortBase), t,
                           StatementAddress(as).c_str());
  }
  return Emit(as, static_cast<uint8_t>(shortBase | ((target >> 8) << 5)), target);
}

// First pass: two bytes only when the target is known to be reachable.
int ChooseJumpSize(Assembler& as, int32_t target, bool isCall) {
  if (as.OperandSlot1.text.empty() && as.CurrentSegment->IsAbsolute() && !as.ExprUndefined) {
    uint32_t next = as.CurrentSegment->location + 2;
    if (((static_cast<uint32_t>(target) ^ next) & kBlockMask) == 0) return 2;
    if (!isCall && FitsShortBranch(DistanceFromNext(as, target, 2))) return 2;
  }
  return as.opt.InPageOption ? 2 : 3;
}

// JMP @A+DPTR.
int EncodeIndirectJump(const Statement& s) {
  Assembler& as = s.as;
  if (!MatchAccumulator(as, PlusOrBlank)) return ReportError(as, 75);
  if (!NextIs(as, '+')) return ReportError(as, 80);
  SkipBlanks(as);
  if (!MatchToken(as, "DPTR?", LastOperandEnd)) return ReportError(as, 81);
  return Emit(as, s.base);
}

}  // namespace

// ACALL, AJMP.
int EncodeAbsoluteJump(const Statement& s) {
  int32_t target = ReadAbsoluteTarget(s.as, false, 0);
  if (s.as.LineHasError) return 0;
  return EmitAbsoluteJump(s.as, s.base, target, s.position == kPosAcall);
}

// JMP, CALL: SJMP, AJMP/ACALL or LJMP/LCALL by the size of the first pass.
int EncodeGenericJump(const Statement& s) {
  Assembler& as = s.as;
  bool isCall = s.position == kPosCall;
  if (!isCall && NextIs(as, '@')) return EncodeIndirectJump(s);
  uint8_t shortBase = kMnemonics[isCall ? kPosAcall : kPosAjmp].base;
  int32_t target = ReadWordOperand(as, as.OperandSlot1, kCodeAddress);
  if (as.LineHasError) return 0;
  int size = as.SecondPass ? s.sizeByte : ChooseJumpSize(as, target, isCall);
  if (size == 2) {
    int32_t displacement = DistanceFromNext(as, target, 2);
    // A short relative jump is preferred to the absolute one.
    if (!isCall && as.OperandSlot1.text.empty() && !as.ExprUndefined && FitsShortBranch(displacement))
      return Emit(as, kShortJumpOpcode, displacement);
    int32_t low = ReadAbsoluteTarget(as, true, target);
    if (as.LineHasError) return 0;
    return EmitAbsoluteJump(as, shortBase, low, isCall);
  }
  if (size != 3) ReportError(as, 17);
  if (isCall && as.SecondPass && !as.OperandSlot1.text.empty()) AddCallTarget(as, as.OperandSlot1.text);
  return Emit(as, static_cast<uint8_t>(shortBase + kLongFormStep), target >> 8, target);
}

// LCALL, LJMP.
int EncodeLongJump(const Statement& s) {
  int32_t target = ReadWordOperand(s.as, s.as.OperandSlot1, kCodeAddress);
  return Emit(s.as, s.base, target >> 8, target);
}

// JC, JNC, JNZ, JZ, SJMP.
int EncodeShortBranch(const Statement& s) { return Emit(s.as, s.base, ReadRelativeOperand(s.as, 2)); }

// DJNZ Rn,r and DJNZ d,r.
int EncodeDecrementJump(const Statement& s) {
  Assembler& as = s.as;
  int n = 0;
  if (ReadRegister(as, InnerOperandEnd, n)) {
    if (!NextIs(as, ',')) return ReportError(as, 20);
    return Emit(as, static_cast<uint8_t>(s.base + kFormRegister + n), ReadRelativeOperand(as, 2));
  }
  int32_t address = ReadByteOperand(as, as.OperandSlot1, kDirectAddress);
  if (as.LineHasError || !ExpectComma(as)) return 0;
  int32_t displacement = ReadRelativeOperand(as, 3);
  return Emit(as, static_cast<uint8_t>(s.base + kFormDirect), address, displacement);
}

// JB, JBC, JNB.
int EncodeBitJump(const Statement& s) {
  Assembler& as = s.as;
  int32_t bit = ReadBitOperand(as);
  if (as.LineHasError || !ExpectComma(as)) return 0;
  int32_t displacement = ReadRelativeOperand(as, 3);
  return Emit(as, s.base, bit, displacement);
}

}  // namespace ta51
