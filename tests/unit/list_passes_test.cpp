// The listing as whole runs make it: what a listed first pass shows, and the
// layout that each pass starts from.
#include <string>
#include <utility>

#include "run_helpers.h"

namespace ta51::testing {
namespace {

class ListPasses : public AssemblyTest {
 protected:
  // The listings of the two passes of a run under LISTF (and NOLOGO, so
  // with no closing message), each from its first page header on.
  std::pair<std::string, std::string> BothPasses(const std::string& name, const std::string& source) {
    RunResult run = Assemble(name, source, {"/LISTF"});
    EXPECT_EQ(run.status, 0) << run.out;
    std::string list = Read(name.substr(0, name.find('.')) + ".LST");
    size_t second = list.find("\fPAGE  001", 1);
    if (second == std::string::npos) return {list, ""};
    return {list.substr(0, second), list.substr(second)};
  }
  // The listed row of source line `number` (line numbers stand in columns 0 to 4).
  std::string RowOf(const std::string& list, int number) {
    char start[8];
    std::snprintf(start, sizeof start, "\n%5d", number);
    size_t at = list.find(start);
    if (at == std::string::npos) return {};
    return list.substr(at + 1, list.find('\n', at + 1) - at - 1);
  }
};

// Without forward references, the first pass lists every line as the second
// does: definitions, expansions, skipped lines, included files.
TEST_F(ListPasses, ListedFirstPassShowsWhatTheSecondShows) {
  Write("part.inc", " DB 7 ; included\n");
  auto [first, second] = BothPasses("m.asm",
                                    "; header\n"
                                    "#define TWO 2\n"
                                    "PAIR MACRO C\n"
                                    "; kept comment\n"
                                    " DB \\0,TWO\n"
                                    " ENDM\n"
                                    "NAMED .MACRO x\n"
                                    " DB x\n"
                                    " .ENDM\n"
                                    " CSEG AT 0\n"
                                    " MEX\n"
                                    " UNA\n"
                                    " PAIR 1\n"
                                    " NAMED 5\n"
                                    " IFEQ 1\n"
                                    " DB 0\n"
                                    " ENDC\n"
                                    " INCLUDE part.inc\n"
                                    " END\n");
  EXPECT_EQ(first, second);
  EXPECT_NE(first.find("PAIR MACRO C"), std::string::npos) << first;
  EXPECT_NE(first.find("; kept comment"), std::string::npos) << first;
}

// A FIELDS and a PAGEWIDTH late in the file leave the lines ahead of them in
// the default layout, in the second pass as in the first, and the warning
// about a page too narrow comes at the PAGEWIDTH line, once.
TEST_F(ListPasses, LayoutOfEachPassStartsAfresh) {
  RunResult run = Assemble("w.asm", " NOP\n FIELDS 4,4,4\n PAGEWIDTH 30\n NOP\n");
  std::string list = Read("w.LST");
  EXPECT_EQ(RowOf(list, 1), "    1 0000 00" + std::string(20, ' ') + "NOP");
  EXPECT_EQ(RowOf(list, 4), "    4 0001 00" + std::string(14, ' ') + "NOP");
  size_t warning = run.out.find("Warning:");
  EXPECT_NE(run.out.find("w.asm(3): Warning: Page width too small"), std::string::npos) << run.out;
  EXPECT_EQ(run.out.find("Warning:", warning + 1), std::string::npos) << run.out;

  auto [first, second] = BothPasses("l.asm", " NOP\n FIELDS 4,4,4\n NOP\n PAGE 30\n");
  EXPECT_EQ(first, second);
}

}  // namespace
}  // namespace ta51::testing
