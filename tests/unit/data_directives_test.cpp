// Data and storage directives end to end: what they store, how far they move
// the position, and the records and totals that follow from it.
#include <algorithm>

#include "run_helpers.h"

namespace ta51::testing {
namespace {

using DataDirectives = AssemblyTest;

std::string Repeated(const std::string& item, int count) {
  std::string text;
  for (int n = 0; n < count; ++n) text += (n == 0 ? "" : ",") + item;
  return text;
}

TEST_F(DataDirectives, StatementLimitIs256Bytes) {
  EXPECT_EQ(Errors(" DB " + Repeated("1", 256) + "\n"), "");
  EXPECT_EQ(Errors(" DB " + Repeated("1", 257) + "\n"), "Overflow;");
  EXPECT_EQ(Errors(" DW " + Repeated("1", 128) + "\n"), "");
  EXPECT_EQ(Errors(" DW " + Repeated("1", 129) + "\n"), "Overflow;");
  EXPECT_EQ(Errors(" DB '" + std::string(257, 'x') + "'\n"), "Overflow;");
  // A failed statement takes no room: the label behind it stays at 0.
  EXPECT_EQ(Errors(" DB " + Repeated("1", 257) + "\nL: NOP\n DB L\n"), "Overflow;");
}

TEST_F(DataDirectives, LabelsOfDataStatementsAndTheirValues) {
  // X takes the first byte; DS labels stand ahead of the room, EVEN labels behind it.
  EXPECT_EQ(Body(" PUBLIC X,Y,Z,W\n NOP\nX: DB 1,2,3\nY: DS 5\nZ: EVEN\nW: DW $\n"),
            "ST0,C,A. ASS0,C. ASL0,0. ASQ0,6. NI0,01W. ASI0,R0+A. NI1,01X. ASI1,R0+1. NI2,01Y. ASI2,R0+4. NI3,01Z. "
            "ASI3,R0+A. SB0. IRG,R0. LR00. LR01. LR02. LR03. ASP,9. ASP,A. LR000A. ");
  // A negative DS moves the position back.
  EXPECT_EQ(Body(" DS 4\n DS -2\n NOP\n"), "ST0,C,A. ASS0,3. ASL0,0. ASQ0,2. SB0. IRG,R0. ASP,4. ASP,2. LR00. ");
}

TEST_F(DataDirectives, ReservationsStayInsideTheAddressSpace) {
  // Below 0 or past 10000H the position would wrap and the next byte land
  // on an address already used.
  EXPECT_EQ(Errors(" CSEG AT 0\n DS -1\n NOP\n"), "Out of range;");
  EXPECT_EQ(Errors(" CSEG AT 0FFF0H\n DS 11H\n"), "Out of range;");
  EXPECT_EQ(Errors(" CSEG AT 0FFF0H\n DS 10H\n"), "");
  EXPECT_EQ(Errors(" DSEG AT 30H\n DS -31H\n"), "Out of range;");
  EXPECT_EQ(Errors(" DSEG AT 30H\n DS -30H\n"), "");
}

TEST_F(DataDirectives, TotalsWithAndWithoutObjectFile) {
  Write("t.asm", " NOP\n DB 1,2\n DS 3\n EVEN\n ALIGN 8\n BSEG\n DBIT 9\n");
  EXPECT_NE(Run({"t.asm;"}).out.find("Total bytes generated: 8\n"), std::string::npos);
  // Without OBJ the DB bytes are not counted, the reserved room is.
  EXPECT_NE(Run({"t.asm;", "/NOOBJ"}).out.find("Total bytes generated: 6\n"), std::string::npos);
}

TEST_F(DataDirectives, ModuleNameLibrariesAndNoOverlayNames) {
  RunResult run = Assemble("n.asm", " NAME \"my mod\"\n INCLUDELIB A.LIB\n INCLUDELIB \"B\".LIB\n __NOOVL F1\n"
                                    " __NOOVL F2\n END\n");
  ASSERT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(Read("n.OBJ"),
            "MB8051,08\"MY MOD\".\r\nAD8,2,L.\r\nNV02F1.\r\nNV02F2.\r\nNV02F1.\r\nNV02F2.\r\n"
            "LI05A.LIB,07\"B\".LIB.\r\nME.\r\n");
  // A name stops at a blank; what follows is text behind the operand.
  EXPECT_EQ(Errors(" NAME TWO WORDS\n"), "End of operand field expected;");
}

TEST_F(DataDirectives, NameInAnIncludedFileIsIgnored) {
  Write("inc.asm", " NAME INNER\n");
  RunResult run = Assemble("m.asm", " NAME OUTER\n INCLUDE inc.asm\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("Warning: NAM directive ignored"), std::string::npos) << run.out;
  EXPECT_EQ(Read("m.OBJ").substr(0, 19), "MB8051,07\"OUTER\".\r\n");
}

TEST_F(DataDirectives, TitlePageAndSpaceInTheListing) {
  RunResult run = Assemble("l.asm", " NOP\n TTL My Title\n PAGE\n NOP\n PAGE 30\n SPC 2\n NOP\n SPC 300\n",
                           {"/NOPAGE"});
  EXPECT_EQ(run.status, 1);
  std::string list = Read("l.LST");
  // PAGE alone and SPC are not listed; PAGE with a length shows it.
  EXPECT_EQ(list.find("PAGE\n"), std::string::npos);
  EXPECT_NE(list.find("    5 001E                       PAGE      30\n\n\n    7 0002 00"), std::string::npos) << list;
  EXPECT_NE(list.find("Error: Out of range"), std::string::npos);
  // The title is set when the first header is written; PAGE starts a second page.
  Assemble("h.asm", " TTL My Title\n PAGE\n NOP\n");
  std::string paged = Read("h.LST");
  EXPECT_EQ(std::count(paged.begin(), paged.end(), '\f'), 2);
  EXPECT_NE(paged.find("   My Title\n", paged.rfind('\f')), std::string::npos) << paged;
}

}  // namespace
}  // namespace ta51::testing
