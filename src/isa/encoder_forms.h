// Shared by the encoder's files: the statement being encoded, the operand
// forms as offsets from a mnemonic's base opcode, and the form handlers.
#pragma once

#include <cstdint>

#include "core/assembler.h"

namespace ta51 {

// Places in the mnemonic table that a handler tells apart.
enum MnemonicPosition : int {
  kPosAcall = 11,
  kPosAjmp = 12,
  kPosXchd = 13,
  kPosXch = 14,
  kPosXrl = 18,
  kPosAnl = 19,
  kPosOrl = 20,
  kPosSetb = 22,
  kPosClr = 23,
  kPosCpl = 24,
  kPosDec = 25,
  kPosInc = 26,
  kPosJmp = 38,
  kPosCall = 39,
};

// Most mnemonics with the same operand shape lay their forms out the same
// way above the base opcode.
enum FormOffset : uint8_t {
  kFormDirectA = 2,          // d,A
  kFormDirectImmediate = 3,  // d,#v
  kFormImmediate = 4,        // A,#v
  kFormDirect = 5,           // A,d
  kFormIndirect = 6,         // A,@Ri (+i)
  kFormRegister = 8,         // A,Rn (+n)
};

struct Statement {
  Assembler& as;
  uint8_t base;
  int position;
  int sizeByte;  // the length the first pass wrote, read back in the second
};

// Sets the instruction's bytes and length.
int Emit(Assembler& as, uint8_t opcode);
int Emit(Assembler& as, uint8_t opcode, int32_t second);
int Emit(Assembler& as, uint8_t opcode, int32_t second, int32_t third);

int EncodeArithmetic(const Statement& s);
int EncodeLogic(const Statement& s);
int EncodeCompareJump(const Statement& s);
int EncodeBitOperation(const Statement& s);
int EncodeIncrement(const Statement& s);
int EncodeMov(const Statement& s);
int EncodeMovc(const Statement& s);
int EncodeMovx(const Statement& s);

int EncodeAbsoluteJump(const Statement& s);
int EncodeGenericJump(const Statement& s);
int EncodeLongJump(const Statement& s);
int EncodeShortBranch(const Statement& s);
int EncodeDecrementJump(const Statement& s);
int EncodeBitJump(const Statement& s);

}  // namespace ta51
