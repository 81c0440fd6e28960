// The second pass takes from the first the instructions and EQU values that
// nothing later can change. Taken or read again, the run must write the same
// bytes: every golden source and example is assembled both ways, and the
// second way also compares each record with what it reads (a difference
// aborts the run).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "driver/entry.h"

namespace ta51 {
namespace {

namespace fs = std::filesystem;

const fs::path kSourceRoot = fs::path(__FILE__).parent_path().parent_path().parent_path();

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

struct Outcome {
  int status = 0;
  std::string console, object, list;
};

// One directory for both ways, as its path shows in messages and list
// files; one for each test process, as ctest may run tests side by side.
const fs::path kWork = fs::temp_directory_path() / ("ta51reuse" + std::to_string(getpid()));

// Assembles `source` in a fresh copy of its directory, or `text` as
// source.asm when it is given.
Outcome Assemble(const fs::path& source, bool checkOnly, const std::string& text = {}) {
  const fs::path& work = kWork;
  fs::remove_all(work);
  fs::create_directories(work);
  if (text.empty()) {
    for (const auto& entry : fs::directory_iterator(source.parent_path()))
      if (entry.is_regular_file()) fs::copy_file(entry.path(), work / entry.path().filename());
  } else {
    std::ofstream(work / source, std::ios::binary) << text;
  }
  const fs::path previous = fs::current_path();
  fs::current_path(work);
  FILE* console = std::tmpfile();
  FILE* input = std::tmpfile();
  Outcome outcome;
  const std::string name = source.filename().string();
  outcome.status = RunAssembler({name, "/NOLOGO", "source.OBJ", "source.LST"}, Console{console, console, input},
                                RunChecks{checkOnly});
  std::rewind(console);
  for (int c = std::fgetc(console); c != EOF; c = std::fgetc(console)) outcome.console += static_cast<char>(c);
  std::fclose(console);
  std::fclose(input);
  outcome.object = ReadFile(work / "source.OBJ");
  outcome.list = ReadFile(work / "source.LST");
  fs::current_path(previous);
  fs::remove_all(work);
  return outcome;
}

std::vector<fs::path> Sources() {
  std::vector<fs::path> sources;
  for (const auto& directory : fs::directory_iterator(kSourceRoot / "tests/golden/cases"))
    for (const char* name : {"source.asm", "source.a51"})
      if (fs::exists(directory.path() / name)) sources.push_back(directory.path() / name);
  for (const auto& entry : fs::directory_iterator(kSourceRoot / "examples"))
    if (entry.path().extension() == ".asm" || entry.path().extension() == ".a51") sources.push_back(entry.path());
  return sources;
}

TEST(InstructionReuse, TakenOrReadAgainTheRunIsTheSame) {
  setenv("SOURCE_DATE_EPOCH", "0", 1);  // the same date in both list files
  const std::vector<fs::path> sources = Sources();
  ASSERT_GT(sources.size(), 60u);
  for (const fs::path& source : sources) {
    const Outcome taken = Assemble(source, false);
    const Outcome checked = Assemble(source, true);
    EXPECT_EQ(taken.status, checked.status) << source;
    EXPECT_EQ(taken.console, checked.console) << source;
    EXPECT_EQ(taken.object, checked.object) << source;
    EXPECT_EQ(taken.list, checked.list) << source;
  }
}

// Instructions whose bytes the first pass can make but that the second
// refuses: each check that only the second pass makes must keep its line
// from being taken, or the taken run would lose the error.
TEST(InstructionReuse, SecondPassChecksAreNotSkipped) {
  setenv("SOURCE_DATE_EPOCH", "0", 1);
  const char* const programs[] = {
      " CSEG AT 0\n MOV A,#300\n END\n",                          // byte out of range
      " CSEG AT 0\nL: NOP\n MOV A,L\n END\n",                    // a code label as data address
      " DSEG AT 30H\nV: DS 1\n CSEG AT 0\n SJMP V\n END\n",     // a branch to data
      " DSEG AT 30H\nV: DS 1\n CSEG AT 0\n LJMP V\n END\n",     // a jump to data
      " CSEG AT 7FCH\n ACALL 900H\n END\n",                      // out of the 2K block
      " CSEG AT 0\n SETB 30H.1\n END\n",                         // byte not bit-addressable
      " CSEG AT 0\n SETB 20H.9\n END\n",                         // bit number above 7
      " CSEG AT 0\n SETB 300\n END\n",                           // bit address above 255
      " DSEG AT 30H\nV: DS 1\n CSEG AT 0\n SETB V\n END\n",     // a data address as bit
  };
  for (const char* program : programs) {
    const Outcome taken = Assemble("source.asm", false, program);
    const Outcome checked = Assemble("source.asm", true, program);
    EXPECT_NE(checked.status, 0) << program;
    EXPECT_EQ(taken.status, checked.status) << program;
    EXPECT_EQ(taken.console, checked.console) << program;
    EXPECT_EQ(taken.list, checked.list) << program;
  }
}

}  // namespace
}  // namespace ta51
