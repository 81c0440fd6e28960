// Conditional assembly and control statements in whole runs: the bounds of
// bad input, nesting without limit, included files, and the ORG reading.
#include <string>

#include "run_helpers.h"

namespace ta51::testing {
namespace {

class Conditional : public AssemblyTest {
 protected:
  // The load records of assembling `source` as `name`, which must succeed.
  std::string Loads(const std::string& source, const std::string& name = "s.asm");
};

std::string Repeat(const std::string& text, int times) {
  std::string all;
  for (int n = 0; n < times; ++n) all += text;
  return all;
}

// The load records of an object module, each ended by one blank.
// The load records of an object module: the lines that begin with "LR" (the
// module head holds the run directory, whose random name may contain "LR").
std::string LoadRecords(const std::string& object) {
  std::string records;
  for (size_t at = 0; at < object.size(); at = object.find('\n', at) + 1) {
    if (object.compare(at, 2, "LR") == 0) records += object.substr(at, object.find('\r', at) - at) + " ";
    if (object.find('\n', at) == std::string::npos) break;
  }
  return records;
}

std::string Conditional::Loads(const std::string& source, const std::string& name) {
  RunResult run = Assemble(name, source);
  EXPECT_EQ(run.status, 0) << run.out;
  return LoadRecords(Read(name.substr(0, name.find('.')) + ".OBJ"));
}

TEST_F(Conditional, EndOfInputInsideABlockEndsTheRunWithoutObject) {
  struct Case {
    const char* name;
    const char* source;
    const char* message;
  };
  const Case cases[] = {
      {"a.a51", "$IF 0\n\tDB 1\n  $IF 1\n  $ENDIF\n", "a.a51(4): Error: End of file, expecting $ENDIF\n"},
      {"b.asm", "\tIFEQ 0\n\tDB 1\n", "b.asm(3): Error: Missing ENDC\n"},
      {"c.a51", "$IF 1\n\tDB 1\n", "c.a51(3): Error: Missing $ENDIF\n"},
      {"d.asm", "\tIFEQ 0\n\tEND\n\tENDC\n", "Error: Missing ENDC\n"},  // nothing behind END is read
  };
  for (const Case& c : cases) {
    RunResult run = Assemble(c.name, c.source);
    EXPECT_EQ(run.status, 1) << c.name;
    EXPECT_NE(run.out.find(c.message), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Assembly terminated\n"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("Pass 1 complete"), std::string::npos) << run.out;
    EXPECT_FALSE(Exists(std::string(c.name, 1) + ".OBJ"));
    EXPECT_FALSE(TemporaryFilesLeft());
  }
}

TEST_F(Conditional, DollarControlsAreNoStatementsOutsideTheA51Dialect) {
  EXPECT_EQ(Errors("\t$IF 1\n\tNOP\n\t$ENDIF\n\tEND\n"), "Bad opcode;Bad opcode;");
  EXPECT_EQ(Errors("\t$SAVE\n\t$RESTORE\n"), "Bad opcode;Bad opcode;");
}

// Neither an active nor a skipped nest uses the stack per level, so depth
// has no bound but the size of the file.
TEST_F(Conditional, NestingHasNoDepthLimit) {
  constexpr int kDepth = 30000;
  std::string active = Repeat("\tIFEQ 0\n", kDepth) + "\tDB 1\n" + Repeat("\tENDC\n", kDepth);
  EXPECT_EQ(Loads(active), "LR01. ");
  std::string skipped = "\tIFEQ 1\n" + Repeat("\tIFEQ 0\n", kDepth) + "\tDB 0\n" + Repeat("\tENDC\n", kDepth) +
                        "\tELSE\n\tDB 2\n\tENDC\n";
  EXPECT_EQ(Loads(skipped), "LR02. ");
  std::string control = "$IF 0\n" + Repeat("$IF 1\n", kDepth) + Repeat("$ENDIF\n", kDepth) + "$ELSE\n\tDB 3\n$ENDIF\n";
  EXPECT_EQ(Loads(control, "s.a51"), "LR03. ");
}

TEST_F(Conditional, IncludedFileKeepsItsOwnIfBlocks) {
  Write("closes.inc", "\tENDC\n");
  Write("opens.inc", "\tIFEQ 0\n\tDB 1\n");  // left open: forgotten at its end
  EXPECT_EQ(Errors("\tIFEQ 0\n\tINCLUDE closes.inc\n\tENDC\n\tEND\n"), "Unexpected ENDC;");
  EXPECT_EQ(Loads("\tINCLUDE opens.inc\n\tDB 2\n\tEND\n"), "LR01. LR02. ");
}

// Lines of a skipped section count, continuations and comment lines too, so
// later messages carry their true numbers.
TEST_F(Conditional, SkippedLinesCountForLineNumbers) {
  RunResult run = Assemble("n.asm", "\tIFEQ 1\n\tDB 1,\\\n\t2\n  /* comment\n  */\n\tENDC\n\tBAD\n");
  EXPECT_NE(run.out.find("n.asm(7): Error: Bad opcode"), std::string::npos) << run.out;
}

TEST_F(Conditional, VariablesAreSetAgainInTheSecondPass) {
  EXPECT_EQ(Loads("$SET(N=1)\n\tDB N\n$SET(N = N + 1)\n\tDB N\n$RESET(N)\n\tDB N\n", "s.a51"), "LR01. LR02. LR00. ");
}

TEST_F(Conditional, CommandLineLockHoldsAgainstListControls) {
  const std::string source = "$NOLIST\n\tDB 1\n$SAVE\n$LIST\n\tDB 2\n$RESTORE\n\tDB 3\n";
  Write("l.a51", source);
  EXPECT_EQ(Run({"l.a51;", "/NOLOGO", "/NOLIST"}).status, 0);
  // /NOLIST: $LIST does nothing (blanks follow, as no random directory name in the head has them)
  EXPECT_EQ(Read("l.LST").find("DB  "), std::string::npos);
  EXPECT_EQ(Run({"l.a51;", "/NOLOGO", "/LISTF", "/LIST"}).status, 0);
  std::string listed = Read("l.LST");
  EXPECT_NE(listed.find("DB        1"), std::string::npos);  // locked on: $NOLIST does nothing
  EXPECT_NE(listed.find("DB        3"), std::string::npos);
}

TEST_F(Conditional, OrgRefusesAnOffsetOfAnotherSegment) {
  const std::string segments = "SA SEGMENT CODE\nSB SEGMENT CODE\n\tRSEG SA\nLA:\tNOP\n\tRSEG SB\n\tNOP\n";
  EXPECT_EQ(Errors(segments + "\tORG LA+4\n"),
            "Invalid segment reference in relocatable expression;");
  EXPECT_EQ(Errors(segments + "\tCSEG AT 10H\n\tORG LA\n"),
            "Invalid segment reference in relocatable expression;");
  // An address of any absolute segment, and an offset of the segment itself.
  EXPECT_EQ(Errors("\tCSEG AT 100H\nT:\tNOP\n\tDSEG AT 30H\nV:\tDS 1\n\tCSEG AT 0\n\tORG T+1\n\tORG V\n"), "");
  EXPECT_EQ(Errors(segments + "LB:\tNOP\n\tORG LB+4\n"), "");
}

TEST_F(Conditional, OrgInAbsoluteSegmentStartsAtTheAddressOfDollar) {
  Write("v.asm", "\tCSEG AT 0\n\tLJMP 100H\n\tORG $+5\n\tRETI\n");
  ASSERT_EQ(Run({"v.asm;", "/NOLOGO"}).status, 0);
  std::string object = Read("v.OBJ");
  EXPECT_NE(object.find("ASL1,8."), std::string::npos) << object;  // 3 + 5
  EXPECT_EQ(LoadRecords(object), "LR020100. LR32. ");
}

}  // namespace
}  // namespace ta51::testing
