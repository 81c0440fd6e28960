// Debug records and code banks in whole runs.
#include "run_helpers.h"

namespace ta51::testing {
namespace {

class DebugBank : public AssemblyTest {
 protected:
  // The object module of `source` as s.asm, its records joined by blanks,
  // less the module head: that names the test's directory, a random name
  // that may hold any letters a search looks for.
  std::string Module(const std::string& source, const std::vector<std::string>& options = {}) {
    RunResult run = Assemble("s.asm", source, options);
    EXPECT_EQ(run.status, 0) << run.out;
    const std::string object = Read("s.OBJ");
    std::string plain;
    for (size_t at = object.find('\n') + 1; at > 0 && at < object.size(); ++at)
      if (object[at] != '\r') plain += object[at] == '\n' ? ' ' : object[at];
    return plain;
  }
};

TEST_F(DebugBank, NoBlocksWithoutDebug) {
  const std::string source = "K\tEQU\t1\n\tCSEG\nL:\tNOP\n";
  EXPECT_EQ(Module(source).find("BB"), std::string::npos);
  // The option turned off again before the end writes no block either.
  EXPECT_EQ(Module("\tDEBUG\n" + source + "\tNODEBUG\n").find("BB"), std::string::npos);
  EXPECT_NE(Module(source, {"/DEBUG"}).find("BB1,0,03\"s\"."), std::string::npos);
}

TEST_F(DebugBank, ARunRepeatsInProcess) {
  const std::string source =
      "\t__SFILE\tm.c\nPROG\tSEGMENT\tCODE\tBANK,1,PORT,90H\n\tRSEG\tPROG\n\t__SLINE\t3\n\tNOP\n"
      "\tCSEG\nK\tEQU\t2\n\tMOV\tA,#K\n\t__DEBUG\nBB1,0,01X.\nASN1\tK\n__DEBUGEND\n";
  const std::string first = Module(source, {"/DEBUG"});
  EXPECT_NE(first.find("ASM2,90."), std::string::npos);
  EXPECT_EQ(Module(source, {"/DEBUG"}), first);
}

// __SFILE asks for debug records whatever the command line says; the DEBUG
// statement obeys the command line.
TEST_F(DebugBank, SfileTurnsDebugOnAgainstTheCommandLine) {
  EXPECT_EQ(Module("\tDEBUG\n\tCSEG\n\tNOP\n", {"/NODEBUG"}).find("BB"), std::string::npos);
  const std::string marked = Module("\t__SFILE\tm.c\n\tCSEG\n\tNOP\n", {"/NODEBUG"});
  EXPECT_NE(marked.find("BB1,"), std::string::npos);
  EXPECT_NE(marked.find("BE10."), std::string::npos);
  EXPECT_EQ(marked.find("BB5"), std::string::npos);  // no line, no line block
}

TEST_F(DebugBank, SlineWithoutCodeSegmentAddsNothing) {
  EXPECT_EQ(Module("\t__SFILE\tm.c\n\t__SLINE\t1\n\tCSEG\n\tNOP\n").find("BB5"), std::string::npos);
}

// A mark means the address of its code, in the bank of that code's segment.
TEST_F(DebugBank, SlineTakesTheBankOfItsSegment) {
  const std::string module = Module(
      "A1\tSEGMENT\tCODE\tBANK,1,PORT,90H\nB1\tSEGMENT\tCODE\n\t__SFILE\tm.c\n\tRSEG\tA1\n\tNOP\n"
      "\t__SLINE\t7\n\tNOP\n\tRSEG\tB1\n\t__SLINE\t8\n\tNOP\n");
  EXPECT_NE(module.find("BB5,0,05\"M.C\". NN9C40,00. ATN9C40,2,7,7,0. ASN9C40,(R0+1). "
                        "ATN9C40,0,7,8,0. ASN9C40,(R1+0). BE5."),
            std::string::npos)
      << module;
}

// A call whose body leaves for another segment has no entry of its own.
TEST_F(DebugBank, MacroCallThatLeavesItsSegmentHasNoLineEntry) {
  const std::string module = Module(
      "OTHER\tSEGMENT\tCODE\nJUMP\tMACRO\n\tRSEG\tOTHER\n\tNOP\n\tENDM\n\tCSEG\n\tNOP\n\tJUMP\n",
      {"/DEBUG"});
  EXPECT_NE(module.find("NN9C46,00. ATN9C46,0,7,07,0. ASN9C46,0. BE5."), std::string::npos) << module;
}

// With no object file the block is still read and its expressions checked.
TEST_F(DebugBank, DebugBlockWithoutObjectFile) {
  const std::string block = "\tCSEG\n\tNOP\n\t__DEBUG\nBB1,0,01X.\nASN1\tNOSUCH\n__DEBUGEND\n";
  RunResult failed = Assemble("s.asm", block, {"/NOOBJ"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_NE(failed.out.find("s.asm(5): Error: No such label"), std::string::npos) << failed.out;
  RunResult clean = Assemble("t.asm", "K\tEQU\t1\n" + block.substr(0, block.find("NOSUCH")) + "K\n__DEBUGEND\n",
                             {"/NOOBJ"});
  EXPECT_EQ(clean.status, 0) << clean.out;
  EXPECT_FALSE(Exists("t.OBJ"));
}

// A block in an included file ends the pass there, the including file too.
TEST_F(DebugBank, DebugBlockInAnIncludedFileEndsThePass) {
  Write("inc.asm", "\t__DEBUG\nXX1.\n__DEBUGEND\n");
  const std::string module = Module("\tCSEG\n\tNOP\n\tINCLUDE\tinc.asm\n\tMOV\tA,#1\n");
  EXPECT_NE(module.find("LR00. XX1. ME."), std::string::npos) << module;
  EXPECT_EQ(module.find("LR7401"), std::string::npos);
}

}  // namespace
}  // namespace ta51::testing
