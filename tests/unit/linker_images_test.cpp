// Images that must come out equal: tl51's against as31's on the same
// absolute programs, and a program split into modules against the same
// program written as one absolute module at the addresses of the map.
#include "linker_test_helpers.h"

namespace ta51::testing {
namespace {

class ImageTest : public LinkTest {
 protected:
  // as31's image of `source`, in its own syntax, assembled in the run directory.
  std::map<uint32_t, uint8_t> As31Image(const std::string& source) {
    std::string command = "cd '" + directory_ + "' && as31 -Fhex " + source + " >as31.log 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << Read("as31.log");
    return HexImage(source.substr(0, source.find('.')) + ".hex");
  }

  std::map<uint32_t, uint8_t> LinkedImage(const std::string& object) {
    RunResult link = Link({"-o", "linked.hex", object});
    EXPECT_EQ(link.status, 0) << link.err;
    return HexImage("linked.hex");
  }
};

TEST_F(ImageTest, AllOpcodesAsAs31) {
  if (!ToolInstalled("as31")) GTEST_SKIP() << "as31 is not installed";
  std::string source = Read((kSourceRoot / "tests/golden/cases/all_opcodes/source.asm").string());
  Write("prog.asm", source);
  AssembleAll({"prog.asm"});
  for (char& c : source)
    if (c == '$') c = '*';  // as31 writes the location counter so
  Write("theirs.asm", source);
  std::map<uint32_t, uint8_t> ours = LinkedImage("prog.OBJ");
  EXPECT_EQ(ours.size(), 394u);
  EXPECT_EQ(ours, As31Image("theirs.asm"));
}

TEST_F(ImageTest, BenchmarkProgramAsAs31) {
  if (!ToolInstalled("as31")) GTEST_SKIP() << "as31 is not installed";
  std::string command = std::string(TL51_GEN_COMPARE) + " dense 20000 '" + Path("prog.asm") + "' '" +
                        Path("theirs.asm") + "' 2>/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  AssembleAll({"prog.asm"});
  std::map<uint32_t, uint8_t> ours = LinkedImage("prog.OBJ");
  EXPECT_GT(ours.size(), 10000u);
  EXPECT_EQ(ours, As31Image("theirs.asm"));
}

// The split example written again as one absolute module: every RSEG of a
// linked module becomes a segment AT the address of the map, and what joins
// modules (NAME, EXTRN, PUBLIC, INCLUDELIB, SEGMENT, END) goes.
TEST_F(ImageTest, SplitProgramAsOneAbsoluteModule) {
  const std::filesystem::path split = kSourceRoot / "examples/split";
  std::vector<std::string> modules = {"main.asm", "squares.asm", "sum.asm", "lib_add.asm", "lib_mul.asm"};
  for (const std::string& module : modules) CopyIn(split / module);
  AssembleAll(modules);
  Write("MATHLIB.LIB", Read("lib_add.OBJ") + Read("lib_mul.OBJ"));
  ASSERT_EQ(Link({"-o", "split.hex", "main.OBJ", "squares.OBJ", "sum.OBJ"}).status, 0);

  std::map<std::string, std::string> directive;  // segment name: "CSEG AT 0100H"
  std::istringstream map(Read("split.map"));
  const std::map<std::string, std::string> kSegmentWords = {
      {"CODE", "CSEG"}, {"XDATA", "XSEG"}, {"DATA", "DSEG"}, {"IDATA", "ISEG"}, {"BIT", "BSEG"}};
  for (std::string line; std::getline(map, line);) {
    std::istringstream fields(line);
    std::string space, start, end, size, segment;
    fields >> space >> start >> end >> size >> segment;
    if (kSegmentWords.count(space) != 0 && segment[0] != '(')
      directive[segment] = kSegmentWords.at(space) + " AT 0" + start + "H";
  }
  // The segments that the layout was meant to exercise, where the rules put them.
  EXPECT_EQ(directive["SQ_TABLE"], "CSEG AT 00100H");       // PAGE
  EXPECT_EQ(directive["MAIN_FLAGS"], "DSEG AT 020H");        // BITADDRESSABLE
  EXPECT_EQ(directive.count("LIB_MUL_CODE"), 0u);            // not pulled from the library

  std::string program;
  for (const char* module : {"main.asm", "squares.asm", "sum.asm", "lib_add.asm"}) {
    std::istringstream lines(Read(module));
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string first, second;
      words >> first >> second;
      if (first == "END") break;
      if (first == "RSEG") {
        ASSERT_EQ(directive.count(second), 1u) << second;
        program += "        " + directive[second] + "\n";
      } else if (first != "NAME" && first != "EXTRN" && first != "PUBLIC" && first != "INCLUDELIB" &&
                 second != "SEGMENT") {
        program += line + "\n";
      }
    }
  }
  Write("whole.asm", program + "        END\n");
  AssembleAll({"whole.asm"});
  ASSERT_EQ(Link({"-o", "whole.hex", "whole.OBJ"}).status, 0);
  std::map<uint32_t, uint8_t> whole = HexImage("whole.hex");
  EXPECT_EQ(whole.size(), 109u);
  EXPECT_EQ(HexImage("split.hex"), whole);
}

}  // namespace
}  // namespace ta51::testing
