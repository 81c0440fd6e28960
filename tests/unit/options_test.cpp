// Option keywords: the table, and the lock of the command line.
#include <gtest/gtest.h>

#include <cstdio>

#include "core/assembler.h"
#include "core/option_keywords.h"
#include "run_helpers.h"

namespace ta51 {
namespace {

struct OptionsTest : ::testing::Test {
  OptionsTest() : as(Console{std::tmpfile(), std::tmpfile(), nullptr}) {}
  ~OptionsTest() override {
    std::fclose(as.console.out);
    std::fclose(as.console.err);
  }
  void CommandLine(std::initializer_list<const char*> words) {
    as.CommandLinePhase = true;
    for (const char* word : words) ProcessOption(as, FindOption(word));
    as.CommandLinePhase = false;
  }
  Assembler as;
};

TEST_F(OptionsTest, KeywordsAndAliases) {
  EXPECT_EQ(FindOption("nolist"), 22);
  EXPECT_EQ(FindOption("NOL"), 22);
  EXPECT_EQ(FindOption("O"), 12);
  EXPECT_EQ(FindOption("clist"), 0);  // a real code, not "no such row"
  EXPECT_EQ(FindOption("PAGE"), 26);
  EXPECT_EQ(FindOption("NOLISTX"), kNoOption);
}

TEST_F(OptionsTest, CommandLineLocksItsValue) {
  CommandLine({"NOLIST"});
  EXPECT_EQ(SetOptionFlag(as, as.opt.LIST, 1), 0);
  EXPECT_EQ(as.opt.LIST.Value(), 0);
  EXPECT_EQ(SetOptionFlag(as, as.opt.SYM, 1), 1);
  EXPECT_EQ(as.opt.SYM.Value(), 1);
  EXPECT_FALSE(as.opt.SYM.Locked());
}

TEST_F(OptionsTest, ListNeedsListfOnTheCommandLine) {
  CommandLine({"LIST"});
  EXPECT_EQ(as.opt.LIST.bits, 0u);
  as.opt = OptionFlags{};
  CommandLine({"LISTF", "LIST"});
  EXPECT_TRUE(as.opt.LIST.Locked() && as.opt.LIST.Value() == 1);
  as.opt = OptionFlags{};
  CommandLine({"LIST", "LISTF"});
  EXPECT_TRUE(as.opt.LIST.Locked() && as.opt.LIST.Value() == 1);
  as.opt = OptionFlags{};
  CommandLine({"SEQ"});
  EXPECT_EQ(as.opt.SEQ.bits, 0u);
}

TEST_F(OptionsTest, SourceOptionsRefuseLabelsAndObjoffPassesTheLock) {
  as.CommandLinePhase = false;
  as.LineHasLabel = true;
  as.Line.text = "L NOLIST\n";
  as.ListStream = std::tmpfile();
  EXPECT_EQ(ProcessOption(as, 22), 0);
  EXPECT_TRUE(as.LineHasError);
  as.LineHasLabel = false;
  CommandLine({"OBJ"});
  as.SecondPass = 1;
  EXPECT_EQ(ProcessOption(as, 13), 2);  // NOOBJ does nothing in the second pass
  EXPECT_EQ(as.opt.OBJ.Value(), 1);
  EXPECT_EQ(ProcessOption(as, 28), 2);  // OBJOFF with IHEX off
  EXPECT_EQ(as.opt.OBJ.Value(), 0);
}

// OBJ, NOOBJ and the options PAGE and NOPAGE act in the first pass, and
// the second keeps what they set: lines that only the second pass reads
// (behind IFDEF of a name defined further down) change nothing.
class OptionRuns : public testing::AssemblyTest {};

TEST_F(OptionRuns, ObjectAndPageOptionsActInTheFirstPassOnly) {
  EXPECT_EQ(Assemble("a.asm", " IFDEF LATER\n NOOBJ\n NOPAGE\n ENDC\nLATER EQU 1\n NOP\n").status, 0);
  EXPECT_TRUE(Exists("a.OBJ"));
  EXPECT_EQ(Read("a.LST").rfind("\fPAGE  001", 0), 0u);
  EXPECT_EQ(Assemble("b.asm", " NOOBJ\n NOPAGE\n IFDEF LATER\n OPT OBJ,PAGE\n ENDC\nLATER EQU 1\n NOP\n").status, 0);
  EXPECT_FALSE(Exists("b.OBJ"));
  EXPECT_EQ(Read("b.LST").find("PAGE  001"), std::string::npos);
}

}  // namespace
}  // namespace ta51
