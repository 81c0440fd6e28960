// Segments end to end: selection, resumption, ORG and their records.
#include "run_helpers.h"

namespace ta51::testing {
namespace {

using Segments = AssemblyTest;

TEST_F(Segments, DefaultSegmentAndAbsoluteResumption) {
  EXPECT_EQ(Body(" NOP\n"), "ST0,C,A. ASS0,1. ASL0,0. SB0. IRG,R0. LR00. ");
  EXPECT_EQ(Body(" CSEG AT 10H\n NOP\n NOP\n CSEG AT 10H\n RET\n RET\n"),
            "ST0,C,A. ASS0,4. ASL0,10. SB0. IRG,R0. LR00. LR00. SB0. IRG,R0. LR22. LR22. ");
  EXPECT_EQ(Body(" ORG 10H\n NOP\n NOP\n ORG 10H\n RET\n RET\n"),
            "ST0,C,A. ASS0,2. ASL0,10. SB0. IRG,R0. LR00. LR00. SB0. IRG,R0. LR22. LR22. ");
  // An absolute segment that stays empty has no records, and its number is missing.
  EXPECT_EQ(Body(" CSEG AT 20H\n DSEG AT 30H\n CSEG\n NOP\n"),
            "ST0,C,A. ASS0,1. ASL0,20. SB0. IRG,R0. SB1. IRG,R1. SB0. IRG,R0. LR00. ");
}

TEST_F(Segments, RelocatableSegmentsAndOrg) {
  EXPECT_EQ(Body("PROG SEGMENT CODE\nUNUSED SEGMENT XDATA\n RSEG PROG\n NOP\n ORG 40H\n NOP\n RSEG PROG\n"),
            "ST0,C,04PROG. ASS0,41. ASQ0,3F. ST1,X,06UNUSED. ASS1,0. SB0. IRG,R0. LR00. ASP,40. LR00. ");
  EXPECT_EQ(Body("x segment code inpage\n rseg x\n NOP\n"), "ST0,C,01x. SA0,0,100. ASS0,1. SB0. IRG,R0. LR00. ");
  EXPECT_EQ(Errors("PR SEGMENT CODE\n RSEG PR\n ORG 100H\n ORG 80H\n"), "Cannot decrease program counter;");
}

TEST_F(Segments, SegmentStatementRefusals) {
  EXPECT_EQ(Errors("X SEGMENT DATA INPAGE\n"), "Specified alignment not allowed with this segment type;");
  EXPECT_EQ(Errors("X SEGMENT CODE OVERLAYABLE\n"), "Specified alignment not allowed with this segment type;");
  EXPECT_EQ(Errors("X SEGMENT CODE VARARG\n"), "Specified alignment not allowed with this segment type;");
  EXPECT_EQ(Errors("X SEGMENT CODE;\n"), "Segment type expected;");
  EXPECT_EQ(Errors(" SEGMENT CODE\n"), "No label in label field;");
  EXPECT_EQ(Errors("L:\nL SEGMENT CODE\n"), "Duplicate label;");
  EXPECT_EQ(Errors(" RSEG PR\nPR SEGMENT CODE\n"), "Segment name expected;");
  EXPECT_EQ(Errors("L ORG 10H\n"), "Label not allowed;");
  EXPECT_EQ(Errors(" DSEG\n NOP\n"), "Assembler code not allowed in current segment type;");
  EXPECT_EQ(Errors(" MOV DPTR,#$\n DSEG AT 5\n"), "");
}

TEST_F(Segments, JumpSizingAcrossPasses) {
  // Backward within reach: SJMP; forward: LJMP; CALL in the same 2K block: ACALL.
  EXPECT_EQ(Body("BACK: NOP\n JMP BACK\n JMP FWD\n CALL BACK\nFWD: RET\n"),
            "ST0,C,A. ASS0,9. ASL0,0. SB0. IRG,R0. LR00. LR80FD. LR020008. LR1100. LR22. ");
  // In a relocatable segment the size is 3, the target a fixup, and CALL leaves a call target.
  EXPECT_EQ(Body("PR SEGMENT CODE\n RSEG PR\nL: JMP L\n CALL L\n"),
            "ST0,C,02PR. ASS0,6. CL0,R0. SB0. IRG,R0. LR02(R0,2,I" + Reference(3) + "). LR12(R0,2,I" +
                Reference(4) + "). ");
}

}  // namespace
}  // namespace ta51::testing
