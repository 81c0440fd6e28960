// Operands that carry a value: range and type checks, and the fixup that
// hands a relocatable value to the linker. The first pass only sizes the
// instruction, so most checks wait for the second; a statement that would
// fail one there is not taken over from the first pass.
#include <algorithm>
#include <array>

#include "core/diagnostics.h"
#include "symbols/expression.h"
#include "isa/operands.h"

namespace ta51 {

namespace {

constexpr int32_t kByteLimit = 255;
constexpr int32_t kWordLimit = 65535;
constexpr uint32_t kBlockMask = ~uint32_t{0x7FF};  // bits above a 2K block offset
constexpr int32_t kFirstBitByte = 0x20;
constexpr int32_t kLastBitByte = 0x2F;
constexpr uint32_t kFirstSpecialRegister = 0x80;

// Special function registers whose bits can be addressed one by one.
constexpr std::array<uint32_t, 16> kBitAddressableRegisters = {
    0x80, 0x88, 0x90, 0x98, 0xA0, 0xA8, 0xB0, 0xB8, 0xD0, 0xE0, 0xF0, 0xC0, 0xC8, 0xD8, 0xE8, 0xF8,
};

bool IsDataType(int32_t type) { return type == T_NUMBER || type == T_DATA || type == T_IDATA; }
bool IsCodeType(int32_t type) { return type == T_NUMBER || type == T_CODE; }

int8_t ByteFixupOffset(const Assembler& as, const OperandSlot& slot) { return &slot == &as.OperandSlot1 ? 1 : 2; }

uint32_t NextInstructionAddress(const Assembler& as, int instructionLength) {
  return as.CurrentSegment->location + static_cast<uint32_t>(instructionLength);
}

// Displacement with the 32-bit wrap of all address arithmetic.
int32_t Displacement(int32_t target, uint32_t from) {
  return static_cast<int32_t>(static_cast<uint32_t>(target) - from);
}

// What the linker subtracts to turn a target into a displacement.
std::string DisplacementBase(const Assembler& as, uint32_t next) {
  const SegmentEntry& segment = *as.CurrentSegment;
  if (segment.IsAbsolute()) return FormatText("-%X", next);
  return FormatText("-(R%X+%X)", static_cast<uint32_t>(segment.number), next);
}

int32_t Evaluate(Assembler& as, std::string* text) {
  ExprValue expr;
  return EvaluateExpression(as, expr, text);
}

// `byte.bit`, with the dot already read.
int32_t ReadBitOfByte(Assembler& as, int32_t byteAddress) {
  OperandSlot& slot = as.OperandSlot1;
  bool relocatable = !slot.text.empty();
  if (relocatable && as.ExprType != T_DATA) return ReportError(as, 78);
  if (!relocatable && !IsBitAddressable(static_cast<uint32_t>(byteAddress))) {
    if (as.SecondPass) return ReportError(as, 78);
    as.Reuse.Decline();
  }
  int32_t bit = Evaluate(as, nullptr);
  if (as.LineHasError) return 0;
  if (bit < 0 || bit > 7) {
    if (as.SecondPass) return ReportError(as, 78);
    as.Reuse.Decline();
  }
  if (!relocatable) {
    // Wrapping sums: the first pass may see any value here.
    uint32_t address = static_cast<uint32_t>(byteAddress);
    if (address < kFirstSpecialRegister) address = (address - kFirstBitByte) * 8;
    return static_cast<int32_t>(address + static_cast<uint32_t>(bit));
  }
  // The linker finds the bit from the byte's final address.
  slot.text = FormatText("((%s)-20)*8+%d", slot.text.c_str(), bit);
  as.ExprRelocatable = true;  // the bit number's evaluation cleared it
  if (as.SecondPass) {
    slot.FixupSize = 1;
    slot.FixupOffset = 1;
  }
  return 0;
}

}  // namespace

bool IsBitAddressable(uint32_t address) {
  if (address >= kFirstBitByte && address <= kLastBitByte) return true;
  return std::find(kBitAddressableRegisters.begin(), kBitAddressableRegisters.end(), address) !=
         kBitAddressableRegisters.end();
}

namespace {

// What distinguishes a byte operand from a word operand.
struct SizedOperand {
  int32_t limit;          // largest magnitude of an absolute value
  int rangeError;         // reported beyond it
  bool (*typeAccepted)(int32_t type);  // nullptr: any type
  int typeError;
  int8_t fixupSize;
};

// The error the second pass finds in the value, or 0.
int SizedOperandError(const Assembler& as, const OperandSlot& slot, const SizedOperand& form, int32_t value) {
  // Negative values down to -limit are accepted as well.
  if (slot.text.empty() && (value > form.limit || value < -form.limit)) return form.rangeError;
  if (form.typeAccepted != nullptr && !form.typeAccepted(as.ExprType)) return form.typeError;
  return 0;
}

int32_t ReadSizedOperand(Assembler& as, OperandSlot& slot, const SizedOperand& form) {
  int32_t value = Evaluate(as, &slot.text);
  if (as.LineHasError) return 0;
  if (as.ExprUndefined) {
    if (as.SecondPass) ReportError(as, 4);
    return 0;
  }
  const int error = SizedOperandError(as, slot, form, value);
  if (!as.SecondPass) {
    if (error != 0) as.Reuse.Decline();
    return value;
  }
  if (error != 0) return ReportError(as, error);
  if (as.ExprRelocatable) {
    slot.FixupSize = form.fixupSize;
    slot.FixupOffset = form.fixupSize == 1 ? ByteFixupOffset(as, slot) : 1;
  }
  return value;
}

}  // namespace

int32_t ReadByteOperand(Assembler& as, OperandSlot& slot, int mode) {
  SizedOperand form{kByteLimit, 8, mode == kDirectAddress ? IsDataType : nullptr, 84, 1};
  return ReadSizedOperand(as, slot, form);
}

int32_t ReadWordOperand(Assembler& as, OperandSlot& slot, int mode) {
  SizedOperand form{kWordLimit, 9, mode == kCodeAddress ? IsCodeType : nullptr, 86, 2};
  return ReadSizedOperand(as, slot, form);
}

int32_t ReadRelativeOperand(Assembler& as, int instructionLength) {
  OperandSlot& slot = instructionLength == 2 ? as.OperandSlot1 : as.OperandSlot2;
  int32_t value = Evaluate(as, &slot.text);
  if (as.LineHasError) return 0;
  if (!IsCodeType(as.ExprType)) {
    if (as.SecondPass) return ReportError(as, 86);
    as.Reuse.Decline();
  }
  uint32_t next = NextInstructionAddress(as, instructionLength);
  int32_t displacement = 0;
  if (slot.text.empty()) {
    displacement = Displacement(value, next);
  } else if (as.ExprTermCount == 0 && as.ExprSegment == as.CurrentSegment) {
    // One label of this very segment: the distance is known here.
    displacement = Displacement(as.ExprSegmentOffset, next);
    slot.Clear();
  } else {
    slot.text += DisplacementBase(as, next);
    if (as.SecondPass && as.ExprRelocatable) {
      slot.FixupSize = 1;
      slot.FixupOffset = ByteFixupOffset(as, slot);
    }
  }
  if (as.ExprUndefined) {
    if (as.SecondPass) return ReportError(as, 4);
    displacement = 0;
  }
  if (!slot.text.empty()) return 0;
  // Checked in both passes: a backward branch too far is known at once.
  if (displacement < -128 || displacement > 127) return ReportError(as, 28);
  return displacement;
}

int32_t ReadAbsoluteTarget(Assembler& as, bool haveValue, int32_t value) {
  OperandSlot& slot = as.OperandSlot1;
  if (!haveValue) {
    value = Evaluate(as, &slot.text);
    if (as.LineHasError) return 0;
  }
  if (as.ExprUndefined) {
    if (as.SecondPass) ReportError(as, 4);
    return 0;
  }
  // The block is that of the next instruction, where the program counter
  // stands when the jump is taken.
  uint32_t next = NextInstructionAddress(as, 2);
  const bool otherBlock = slot.text.empty() && ((static_cast<uint32_t>(value) ^ next) & kBlockMask) != 0;
  const bool notCode = !IsCodeType(as.ExprType);
  if (!as.SecondPass) {
    if (otherBlock || notCode) as.Reuse.Decline();
    return value & 0x7FF;
  }
  if (otherBlock) ReportError(as, 83);
  if (notCode) ReportError(as, 86);
  if (as.ExprRelocatable) {
    slot.FixupSize = 2;
    slot.FixupOffset = kWholeInstructionFixup;
  }
  return value & 0x7FF;
}

int32_t ReadBitOperand(Assembler& as) {
  OperandSlot& slot = as.OperandSlot1;
  int32_t value = Evaluate(as, &slot.text);
  if (as.LineHasError) return 0;
  if (as.ExprType == T_BIT) {
    if (as.SecondPass && as.ExprRelocatable) {
      slot.FixupSize = 1;
      slot.FixupOffset = 1;
    }
    return value;
  }
  if (as.Line.Peek() == '.') {
    ++as.Line.offset;
    return ReadBitOfByte(as, value);
  }
  // A relocatable operand that is no bit is refused in both passes.
  if (as.ExprRelocatable) return ReportError(as, 78);
  if (as.ExprType != T_NUMBER) {
    if (as.SecondPass) return ReportError(as, 78);
    as.Reuse.Decline();
  }
  if (static_cast<uint32_t>(value) < 256) return value;
  if (as.SecondPass) ReportError(as, 78);
  as.Reuse.Decline();
  return 0;
}

}  // namespace ta51
