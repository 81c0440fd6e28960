// Register patterns, the bit-addressable bytes and the predefined names.
#include <gtest/gtest.h>

#include <cstdio>

#include "symbols/symbols.h"
#include "isa/operands.h"
#include "isa/predefined.h"

namespace ta51 {
namespace {

class OperandsTest : public ::testing::Test {
 protected:
  Assembler as{Console{std::tmpfile(), std::tmpfile(), nullptr}};

  void SetUp() override {
    as.ListStream = std::tmpfile();
    as.opt.PredefinedSymbolsEnabled.bits = 1;
  }

  void At(const char* text) {
    as.Line.text = text;
    as.Line.offset = 0;
  }

  // Type and value of a visible symbol, "-" when there is none.
  std::string Symbol(const char* name) {
    SymbolEntry* entry = FindSymbol(as, name);
    if (entry == nullptr) return "-";
    return std::to_string(entry->type) + ":" + std::to_string(entry->value);
  }
};

TEST_F(OperandsTest, PatternsNeedTheirTerminator) {
  At("a,\n");
  EXPECT_TRUE(MatchToken(as, "A?", InnerOperandEnd));
  EXPECT_EQ(as.Line.Peek(), ',');  // the terminator stays unread
  At("AB\n");
  EXPECT_FALSE(MatchToken(as, "A?", LastOperandEnd));
  EXPECT_EQ(as.Line.offset, 0);
  EXPECT_TRUE(MatchToken(as, "AB?", LastOperandEnd));
  At("ALPHA\n");
  EXPECT_FALSE(MatchToken(as, "A?", LastOperandEnd));
  At("A,\n");
  EXPECT_FALSE(MatchToken(as, "A?", LastOperandEnd));  // a comma does not end the last operand

  int number = -1;
  At("r7;x\n");
  EXPECT_TRUE(MatchToken(as, "Rn?", LastOperandEnd, &number));
  EXPECT_EQ(number, 7);
  At("R8\n");
  EXPECT_FALSE(MatchToken(as, "Rn?", LastOperandEnd, &number));
  At("@dptr ,A\n");
  EXPECT_TRUE(MatchToken(as, "@DPTR?", CommaOrBlank));
  EXPECT_EQ(as.Line.offset, 5);
  At("A+DPTR\n");
  EXPECT_TRUE(MatchToken(as, "A?", PlusOrBlank));
}

TEST_F(OperandsTest, BitAddressableBytes) {
  for (uint32_t address : {0x20u, 0x2Fu, 0x80u, 0x98u, 0xC0u, 0xC8u, 0xD0u, 0xD8u, 0xE8u, 0xF8u})
    EXPECT_TRUE(IsBitAddressable(address)) << address;
  for (uint32_t address : {0x1Fu, 0x30u, 0x7Fu, 0x81u, 0x99u, 0xC1u, 0x100u})
    EXPECT_FALSE(IsBitAddressable(address)) << address;
}

TEST_F(OperandsTest, PredefinedNamesByProcessor) {
  EnterAllPredefinedSymbols(as, false);
  EXPECT_EQ(Symbol("ACC"), "19:224");
  EXPECT_EQ(Symbol("acc"), "19:224");
  EXPECT_EQ(Symbol("Acc"), "-");
  EXPECT_EQ(Symbol("TR0"), "14:140");
  EXPECT_EQ(Symbol("C"), "-");  // the carry is a register pattern, not a name
  EXPECT_EQ(Symbol("TR2"), "-");

  as.opt.ProcessorMode.bits = 2;  // 80535 adds nothing
  EnterAllPredefinedSymbols(as, true);
  EXPECT_EQ(Symbol("T2CON"), "-");
  as.opt.ProcessorMode.bits = 1;
  EnterAllPredefinedSymbols(as, true);
  EnterAllPredefinedSymbols(as, true);  // the second pass repeats the control
  EXPECT_EQ(Symbol("TR2"), "14:202");
  EXPECT_EQ(Symbol("t2con"), "19:200");
  EXPECT_EQ(as.ErrorCount, 0);

  as.opt.PredefinedSymbolsEnabled.bits = 0;
  EXPECT_EQ(Symbol("ACC"), "-");
}

TEST_F(OperandsTest, NothingEnteredWithoutMod51) {
  as.opt.PredefinedSymbolsEnabled.bits = 0;
  EnterAllPredefinedSymbols(as, false);
  as.opt.PredefinedSymbolsEnabled.bits = 1;
  EXPECT_EQ(Symbol("ACC"), "-");
}

TEST_F(OperandsTest, BankRegistersFollowUsing) {
  EXPECT_EQ(Symbol("AR3"), "-");
  EnterBankRegisters(as, 2);
  EXPECT_EQ(Symbol("AR3"), "19:19");
  EnterBankRegisters(as, 1);
  EXPECT_EQ(Symbol("AR3"), "19:11");
  EXPECT_EQ(Symbol("AR7"), "19:15");
  EXPECT_EQ(as.ErrorCount, 0);
  EXPECT_TRUE(IsRegisterName("AR7"));
  EXPECT_TRUE(IsRegisterName("A"));
  EXPECT_FALSE(IsRegisterName("R8"));
}

}  // namespace
}  // namespace ta51
