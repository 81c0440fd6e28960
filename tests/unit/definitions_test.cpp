// Symbol-defining directives: the values and types they give, the ranges they
// refuse, and what PUBLIC does with names of other kinds.
#include "directives/definitions.h"

#include "driver/pass.h"
#include "run_helpers.h"
#include "symbols/symbols.h"

namespace ta51::testing {
namespace {

using Definitions = AssemblyTest;

TEST_F(Definitions, BitAddressesInEveryForm) {
  // Public absolute symbols show their values in ASI records.
  EXPECT_EQ(Body(" PUBLIC F1,F2,F3,F4,F5\nF1 BIT 20H.3\nF2 BIT 21H.0\nF3 BIT 0D0H.7\nF4 BIT 7\nF5 BIT F3\n"),
            "NI0,02F1. ASI0,3. NI1,02F2. ASI1,8. NI2,02F3. ASI2,D7. NI3,02F4. ASI3,7. NI4,02F5. ASI4,D7. ");
  EXPECT_EQ(Errors("F1 BIT 256\nF2 BIT 30H.1\nF3 BIT 20H.8\nF4 BIT 2FH.-1\n BIT 3\nF5 BIT 20H.7\nF6 BIT F5.1\n"),
            "Bit address expected;Bit address expected;Bit address expected;Bit address expected;"
            "No label in label field;End of operand field expected;");
}

TEST_F(Definitions, AddressSpacesAndTheirRanges) {
  EXPECT_EQ(Body(" PUBLIC D,I,X,C\nD DATA 7FH\nI IDATA 0FFH\nX XDATA 100H\nC CODE 12345H\n MOV A,D\n"),
            "ST0,C,A. ASS0,2. ASL0,0. NI0,01C. ASI0,12345. NI1,01D. ASI1,7F. NI2,01I. ASI2,FF. NI3,01X. ASI3,100. "
            "SB0. IRG,R0. LRE57F. ");
  EXPECT_EQ(Errors("D DATA 100H\nI IDATA -1\n XDATA 5\nL: NOP\nL DATA 5\n"),
            "Data address expected;Data address expected;No label in label field;Duplicate label;");
}

TEST_F(Definitions, ExternalTypesReachTheEncoder) {
  // A NUMBER external is an immediate, a BIT external a bit, a CODE external
  // no data address.
  EXPECT_EQ(Body(" EXTRN NUMBER(N), BIT(F), CODE(C)\n MOV A,#N\n SETB F\n"),
            "ST0,C,A. ASS0,4. ASL0,0. NX2,01F. NX1,01N. SB0. IRG,R0. LR74(X1,1,I" + Reference(2) + "). LRD2(X2,1,I" +
                Reference(3) + "). ");
  EXPECT_EQ(Errors(" EXTRN CODE(C)\n MOV A,C\n"), "Data address expected;");
}

TEST_F(Definitions, NamesDifferInCaseUnlessNocase) {
  EXPECT_EQ(Body(" EXTRN CODE(x), CODE(X)\n LCALL x\n LCALL X\n"),
            "ST0,C,A. ASS0,6. ASL0,0. NX2,01X. NX1,01x. SB0. IRG,R0. LR12(X1,2,I" + Reference(2) + "). LR12(X2,2,I" +
                Reference(3) + "). ");
  EXPECT_EQ(Errors(" NOCASE\n EXTRN CODE(x), DATA(X)\n"), "Duplicate label;");
}

TEST_F(Definitions, RegisterBanks) {
  // USING moves AR0..AR7 and adds the bank's segment behind all others.
  EXPECT_EQ(Body(" USING 2\n MOV A,AR0\n MOV A,AR7\n USING 0\n MOV A,AR7\n"),
            "ST0,C,A. ASS0,6. ASL0,0. ST1,D,Z,A,M,0FRegister bank 0. ASS1,8. ASL1,0. "
            "ST2,D,Z,A,M,0FRegister bank 2. ASS2,8. ASL2,10. SB0. IRG,R0. LRE510. LRE517. LRE507. ");
  // $REGISTERBANK marks banks and leaves AR0..AR7 undefined.
  EXPECT_EQ(Body("$REGISTERBANK(1, 3)\n", "r.a51"),
            "ST0,D,Z,A,M,0FRegister bank 1. ASS0,8. ASL0,8. ST1,D,Z,A,M,0FRegister bank 3. ASS1,8. ASL1,18. ");
  EXPECT_EQ(Errors(" USING 4\n"), "Expression must evaluate to a value between 0 and 3;");
  EXPECT_EQ(Errors("$REGISTERBANK(4)\n$REGISTERBANK 1\n$REGISTERBANK(1\n", "e.a51"),
            "Expression must evaluate to a value between 0 and 3;Missing (;Missing );");
}

TEST_F(Definitions, PercentDialectFindsLabelsOfDefinitions) {
  EXPECT_EQ(Body(" PUBLIC FLAG, PORT\n FLAG BIT 20H.0\n PORT DATA 90H\n", "d.a51"),
            "NI0,04FLAG. ASI0,0. NI1,04PORT. ASI1,90. ");
}

// PUBLIC refuses names that are no address or number. Macro names cannot be
// made by source yet, so the symbol is entered directly.
TEST(PublicDirective, RefusesAMacroName) {
  FILE* sink = std::tmpfile();
  Assembler as{Console{sink, sink, nullptr}};
  as.ListStream = sink;
  SymbolDefinition macro;
  macro.type = T_MACRO;
  DefineSymbol(as, "M\n", macro);
  as.Line = {" PUBLIC M\n", 0};
  ProcessStatement(as);
  EXPECT_TRUE(as.LineHasError);
  EXPECT_EQ(as.ErrorCount, 1);
  FlushListBuffer(as);
  std::rewind(sink);
  char text[256] = {};
  EXPECT_GT(std::fread(text, 1, sizeof text - 1, sink), 0u);
  EXPECT_NE(std::string(text).find("Error: Invalid symbol type"), std::string::npos) << text;
  EXPECT_EQ(FindSymbol(as, "M")->relocation, REL_NULL);
  std::fclose(sink);
}

}  // namespace
}  // namespace ta51::testing
