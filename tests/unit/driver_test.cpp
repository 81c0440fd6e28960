// Whole runs: command line, files, messages and exit status.
#include <cctype>

#include "run_helpers.h"

namespace ta51::testing {
namespace {

using Driver = AssemblyTest;

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string ModuleHead(const std::string& stem) {
  char count[8];
  std::snprintf(count, sizeof count, "%02X", static_cast<unsigned>(stem.size() + 2));
  return std::string("MB8051,") + count + "\"" + Upper(stem) + "\".\r\nAD8,2,L.\r\n";
}

TEST_F(Driver, EmptySourceGivesModuleHeadAndEnd) {
  RunResult run = Assemble("empty.asm", "");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(Read("empty.OBJ"), ModuleHead(Path("empty")) + "ME.\r\n");
  EXPECT_EQ(run.out, "empty.asm\n");
  EXPECT_TRUE(Exists("empty.LST"));
  EXPECT_FALSE(TemporaryFilesLeft());
}

// Arguments with two dashes are the additions for Linux users: they never
// reach the option keywords, and a run that only asks for help or the
// version assembles nothing.
TEST_F(Driver, DoubleDashArguments) {
  Write("prog.asm", "\tNOP\n");
  RunResult version = Run({"--version", "prog;"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "Tavelin 8051 Relocatable Macro Cross-Assembler Version 2.31NT\n");
  RunResult help = Run({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("Usage: ta51 [options] source [object [list]]\n", 0), 0u) << help.out;
  EXPECT_FALSE(Exists("prog.OBJ"));
  for (const char* wrong : {"--frob", "--depfile", "--depfile=", "--HELP"}) {
    RunResult run = Run({"prog;", wrong});
    EXPECT_EQ(run.status, 1) << wrong;
    EXPECT_NE(run.out.find(std::string_view(wrong).substr(0, 9)), std::string::npos) << run.out;
    EXPECT_FALSE(Exists("prog.OBJ")) << wrong;
  }
  // The rule names the outputs and every file read once, the source first.
  Write("inc.h", "#define X 1\n");
  Write("both.asm", "#include \"inc.h\"\n#include \"inc.h\"\n\tDB X\n");
  EXPECT_EQ(Run({"--depfile=both.d", "both;"}).status, 0);
  EXPECT_EQ(Read("both.d"), "both.OBJ both.LST: " + Path("both.asm") + " " + Path("inc.h") + "\n");
  EXPECT_EQ(Run({"--depfile", "none.d", "missing;"}).status, 1);
  EXPECT_FALSE(Exists("none.d"));
}

TEST_F(Driver, BannerAndCommencingLines) {
  Write("prog.asm", "");
  RunResult run = Run({"prog;"});
  EXPECT_EQ(run.out,
            "Tavelin 8051 Relocatable Macro Cross-Assembler Version 2.31NT\nprog.asm\nCommencing first pass\n"
            "Commencing second pass\nAssembly complete\nTotal bytes generated: 0\n0 errors\n0 warnings\n");
  EXPECT_EQ(Run({"prog;", "/CL"}).out,
            "Tavelin 8051 Relocatable Macro Cross-Assembler Version 2.31NT\nprog.asm\n0 bytes generated.\n");
}

TEST_F(Driver, CommandLineRefusals) {
  RunResult unknown = Run({"prog;", "/BOGUS"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.out, "Unknown option /BOGUS\n");
  RunResult tooMany = Run({"a", "b", "c", "d", "/NOLOGO"});
  EXPECT_EQ(tooMany.status, 1);
  EXPECT_EQ(tooMany.out, "Too many filenames : 'd'\n");
  RunResult same = Run({"x.asm", "x.asm;", "/NOLOGO"});
  EXPECT_EQ(same.status, 1);
  EXPECT_EQ(same.out, "Source filename duplicated as output filename\n");
  RunResult none = Run({"/NOLOGO"}, "\n");
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err, "Source file: [.ASM] ");
  EXPECT_EQ(none.out, "No source file specified\n");
}

TEST_F(Driver, FileNameRules) {
  Write("prog.asm", "");
  Write("prog.a51", "");
  EXPECT_EQ(Run({"/NOLOGO", "prog;"}).status, 0);
  EXPECT_TRUE(Exists("prog.OBJ") && Exists("prog.LST"));
  EXPECT_EQ(Run({"prog.a51", "out;", "-nologo"}).status, 0);
  EXPECT_TRUE(Exists("out.OBJ"));
  RunResult prompted = Run({"prog", "/NOLOGO"}, "\n  my.obj  \n");
  EXPECT_EQ(prompted.err, "Object file: [prog.OBJ] List file: [prog.LST] ");
  EXPECT_TRUE(Exists("my.obj"));
  // A path holding a second slash is a file name, not an option.
  EXPECT_EQ(Run({Path("prog.asm") + ";", "/NOLOGO"}).status, 0);
}

// Output files are written over in place rather than cut to nothing first:
// a shorter run must still leave nothing of the longer one behind.
TEST_F(Driver, ShorterOutputReplacesLongerFiles) {
  std::string longer;
  for (int n = 0; n < 3000; ++n) longer += "\tMOV\tA,#" + std::to_string(n % 256) + "\n";
  ASSERT_EQ(Assemble("p.asm", longer).status, 0);
  ASSERT_EQ(Assemble("fresh.asm", "\tNOP\n").status, 0);
  const std::string freshObject = Read("fresh.OBJ"), freshList = Read("fresh.LST");
  ASSERT_EQ(Assemble("p.asm", "\tNOP\n").status, 0);
  // Below their first lines, which name the source, the same text.
  const auto below = [](const std::string& text) { return text.substr(text.find('\n')); };
  EXPECT_EQ(below(Read("p.OBJ")), below(freshObject));
  EXPECT_EQ(below(Read("p.LST")), below(freshList));
  // OBJOFF after BIN leaves the object file empty, whatever it held before.
  ASSERT_EQ(Assemble("p.asm", "\tNOP\n\tBIN\n\tOBJOFF\n\tNOP\n").status, 0);
  EXPECT_TRUE(Exists("p.OBJ"));
  EXPECT_EQ(Read("p.OBJ"), "");
  // A device has no length to cut: writing the list there is no failure.
  EXPECT_EQ(Run({"p.asm", "p.OBJ", "/dev/null", "/NOLOGO"}).status, 0);
}

// Written over while it is read, a source would feed the run its own
// listing for ever; a failed run would remove it as its object file.
TEST_F(Driver, OutputThatIsAnInputUnderAnotherName) {
  const std::string source = "\tNOP\n\tINCLUDE\tinc.asm\n";
  Write("p.asm", source);
  Write("inc.asm", "\tNOP\n");
  std::filesystem::create_symlink("p.asm", "link.lst");
  const std::vector<std::vector<std::string>> commands = {
      {"p.asm", "p.OBJ", "./p.asm"}, {"p.asm", Path("p.asm") + ";"}, {"p.asm", "p.OBJ", "link.lst"},
      {"p.asm", "p.OBJ", "./inc.asm"}, {"p.asm", "./inc.asm;"}};
  for (std::vector<std::string> command : commands) {
    command.push_back("/NOLOGO");
    RunResult run = Run(command);
    EXPECT_EQ(run.status, 1) << command[2];
    EXPECT_NE(run.out.find("Source filename duplicated as output filename\n"), std::string::npos) << run.out;
    EXPECT_EQ(Read("p.asm"), source) << command[2];
    EXPECT_TRUE(Exists("inc.asm")) << command[2];
  }
}

TEST_F(Driver, ErrorMessageEchoAndFailedRunRemovesObject) {
  Write("bad.OBJ", "stale");
  RunResult run = Assemble("bad.asm", ";first\n FOO BAR\n");
  std::string message = "\n" + Path("bad.asm") + "(2): Error: Bad opcode\n F^OO BAR\n";
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "bad.asm\n" + message + "\nPass 1 complete\n1 errors\n0 warnings\n");
  EXPECT_NE(Read("bad.LST").find(message), std::string::npos);
  EXPECT_FALSE(Exists("bad.OBJ"));
  EXPECT_FALSE(TemporaryFilesLeft());
  // An option word given without its dash is taken for the source; the
  // program, next on the line, is the object name and must survive.
  Write("prog.asm", " NOP\n");
  EXPECT_EQ(Run({"MEX", "prog.asm;"}).status, 1);
  EXPECT_EQ(Read("prog.asm"), " NOP\n");
}

TEST_F(Driver, WarningStatusUnderZvedAndWx) {
  Write("inc.inc", " END\n");
  Write("main.asm", " INCLUDE inc.inc\n");
  std::string warning = "\n" + Path("inc.inc") + "(1): Warning: END directive ignored\n";
  RunResult plain = Run({"main.asm;"});
  EXPECT_EQ(plain.status, 0);
  EXPECT_NE(plain.out.find(warning), std::string::npos);
  EXPECT_NE(plain.out.find("0 errors\n1 warnings\n"), std::string::npos);
  RunResult zved = Run({"main.asm;", "/NOLOGO", "/ZVED"});
  EXPECT_EQ(zved.status, 2);
  EXPECT_EQ(zved.out, "main.asm\n");
  EXPECT_NE(Read("main.LST").find(warning), std::string::npos);
  RunResult wx = Run({"main.asm;", "/NOLOGO", "/WX"});
  EXPECT_EQ(wx.status, 1);
  EXPECT_NE(wx.out.find(warning), std::string::npos);
  EXPECT_FALSE(Exists("main.OBJ"));
}

TEST_F(Driver, ClStopsAtTheFirstError) {
  RunResult run = Assemble("two.asm", " FOO\n BAR\n", {"/CL"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "two.asm\n\n" + Path("two.asm") + "(1): Error: Bad opcode\n F^OO\n");
  EXPECT_FALSE(TemporaryFilesLeft());
}

TEST_F(Driver, ListToConsoleIsNotShownTwice) {
  Write("c.asm", " FOO\n");
  RunResult run = Run({"c.asm", "c.OBJ", "con.lst", "/NOLOGO"});
  EXPECT_EQ(run.status, 1);
  std::string message = Path("c.asm") + "(1): Error: Bad opcode\n";
  size_t first = run.out.find(message);
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(run.out.find(message, first + 1), std::string::npos);
}

TEST_F(Driver, LineBreaksContinuationsAndComments) {
  const char* breaks[] = {"\r\n", "\n", "\r", "\n\r"};
  for (const char* eol : breaks) {
    std::string text = std::string(";one") + eol + ";two" + eol + " FOO" + eol;
    RunResult run = Assemble("eol.asm", text);
    EXPECT_NE(run.out.find("eol.asm(3): Error: Bad opcode"), std::string::npos) << "break " << eol[0];
  }
  EXPECT_NE(Assemble("c.asm", ";a \\\n   b\n BAR").out.find("c.asm(3): Error: Bad opcode\n B^AR\n"),
            std::string::npos);
  RunResult comments = Assemble("k.asm", "  /* opens\n closes */ FOO\n /* x */ BAR\n ZAP\n");
  EXPECT_NE(comments.out.find("k.asm(4): Error: Bad opcode\n Z^AP\n"), std::string::npos);
  EXPECT_EQ(comments.out.find("k.asm(2)"), std::string::npos) << comments.out;  // FOO is inside the comment
  EXPECT_EQ(comments.out.find("k.asm(3)"), std::string::npos) << comments.out;  // BAR is behind one
}

TEST_F(Driver, FirstColumnLabelsOutsideTheA51Dialect) {
  RunResult nop = Assemble("n.asm", "NOP\nNOP\n*x\nL END X\n");
  EXPECT_NE(nop.out.find("n.asm(2): Error: Duplicate label"), std::string::npos);
  EXPECT_NE(nop.out.find("n.asm(3): Error: Syntax error"), std::string::npos);
  EXPECT_NE(nop.out.find("n.asm(4): Error: Label not allowed"), std::string::npos);
}

TEST_F(Driver, TextBehindTheOperands) {
  RunResult run = Assemble("t.asm", " NOP X\n NOP ;c\n NOP /* x\n NOP // x\n MOV A,R0 X\n MOV A,R0\t; ok\n ADD A,#1 Z\n");
  EXPECT_EQ(run.out.find("t.asm(1)"), std::string::npos);
  EXPECT_NE(run.out.find("t.asm(5): Error: End of operand field expected\n MOV A,R0 ^X\n"), std::string::npos);
  EXPECT_EQ(run.out.find("t.asm(6)"), std::string::npos);
  EXPECT_NE(run.out.find("t.asm(7): Error: End of operand field expected\n ADD A,#1 ^Z\n"), std::string::npos);
  EXPECT_NE(run.out.find("\nPass 1 complete\n2 errors\n"), std::string::npos);
}

TEST_F(Driver, LabelsOfTheA51Dialect) {
  RunResult run = Assemble("d.a51", "FOO: BAR EQU 5\n LOOP MOV A,R0\nX = 5\n");
  EXPECT_NE(run.out.find("d.a51(1): Error: Bad opcode\nFOO: B^AR EQU 5\n"), std::string::npos);
  EXPECT_NE(run.out.find("d.a51(2): Error: Bad opcode\n L^OOP MOV A,R0\n"), std::string::npos);
  EXPECT_NE(run.out.find("d.a51(3): Error: Bad opcode\nX =^ 5\n"), std::string::npos);
}

TEST_F(Driver, SequenceNumbers) {
  // The number and one blank go; the first column follows them.
  RunResult ordered = Assemble("s.asm", "10 ;a\n20  FOO\n30 L:\n40\tL:\n");
  EXPECT_NE(ordered.out.find("s.asm(2): Error: Bad opcode\n F^OO\n"), std::string::npos);
  EXPECT_NE(ordered.out.find("s.asm(4): Error: Duplicate label"), std::string::npos);
  RunResult backwards = Assemble("b.asm", "10 ;a\n5 ;b\n");
  EXPECT_NE(backwards.out.find("b.asm(2): Error: Sequence number error"), std::string::npos);
}

TEST_F(Driver, CommandLineSymbols) {
  EXPECT_NE(Assemble("e.asm", "FOO:\n", {"/EQU:FOO=3"}).out.find("Duplicate label"), std::string::npos);
  RunResult reserved = Assemble("r.asm", "", {"-equ:r1"});
  EXPECT_EQ(reserved.status, 1);
  EXPECT_NE(reserved.out.find("Reserved name. Not available for label"), std::string::npos);
}

TEST_F(Driver, IncludeFormsScopesAndLineNumbers) {
  std::filesystem::create_directory("inc");
  Write("inc/deep.inc", ".@L:\n.X:\n FOO\n");
  Write("main.asm", ".@L:\n.X:\n INCLUDE \"inc/deep.inc\"\n BAR\n");
  RunResult run = Run({"main.asm;", "/NOLOGO"});
  EXPECT_EQ(run.out.find("(1): Error"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find(Path("inc/deep.inc") + "(2): Error: Duplicate label"), std::string::npos);
  EXPECT_NE(run.out.find(Path("inc/deep.inc") + "(3): Error: Bad opcode"), std::string::npos);
  EXPECT_NE(run.out.find(Path("main.asm") + "(4): Error: Bad opcode"), std::string::npos);

  Write("angle.asm", " INCLUDE <deep.inc>\n");
  RunResult missing = Run({"angle.asm;", "/NOLOGO"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.out.find("Cannot open include file deep.inc\n"), std::string::npos);
  setenv("INCLUDE", (Path("nowhere") + ":" + Path("inc") + "/").c_str(), 1);
  RunResult searched = Run({"angle.asm;", "/NOLOGO"});
  unsetenv("INCLUDE");
  EXPECT_NE(searched.out.find(Path("inc") + "/deep.inc(3): Error: Bad opcode"), std::string::npos);
}

TEST_F(Driver, BadInputEndsCleanly) {
  Write("self.asm", " INCLUDE self.asm\n");
  RunResult self = Run({"self.asm;", "/NOLOGO"});
  EXPECT_EQ(self.status, 1);
  EXPECT_NE(self.out.find("Assembly terminated"), std::string::npos);
  RunResult nul = Assemble("nul.asm", std::string(" NOP\0\n", 6));
  EXPECT_EQ(nul.status, 1);
  EXPECT_NE(nul.out.find("Input file error"), std::string::npos);
  RunResult huge = Assemble("huge.asm", ";" + std::string(1 << 20, 'x') + "\n");
  EXPECT_EQ(huge.status, 1);
  EXPECT_NE(huge.out.find("Input file error"), std::string::npos);
  RunResult noDir = Run({"self.asm", "self.OBJ", "nodir/self.LST", "/NOLOGO"});
  EXPECT_EQ(noDir.status, 1);
  EXPECT_NE(noDir.out.find("Cannot open list file nodir/self.LST"), std::string::npos);
  // A fatal stop in the second pass, with the object file already open.
  RunResult phase = Assemble("phase.asm", "\tORG\tSTART\n\tRET\n");
  EXPECT_EQ(phase.status, 1);
  EXPECT_NE(phase.out.find("phase.asm(2): Error: Phase error"), std::string::npos);
  EXPECT_FALSE(TemporaryFilesLeft());
  EXPECT_FALSE(Exists("self.OBJ") || Exists("nul.OBJ") || Exists("huge.OBJ") || Exists("phase.OBJ"));
}

// The reader takes simple lines straight from its 64 KiB read block and
// leaves breaks with a carriage return and NUL bytes to the byte-wise path.
// 8192 comment lines of eight bytes fill the first block exactly.
TEST_F(Driver, BreaksAndNulBytesAcrossReadBlocks) {
  std::string filler;
  for (int i = 0; i < 8192; ++i) filler += ";filler\n";
  std::string hundred;
  for (int i = 0; i < 100; ++i) hundred += ";  more\n";
  // The line feed that ends the block and the carriage return that starts
  // the next are one break; a lone carriage return later in the block ends
  // a line of its own, twice, behind stretches of simple lines.
  RunResult breaks = Assemble("b.asm", filler + "\r FOO\n" + hundred + ";a\r BAR\n" + hundred + ";b\r ZAP\n NOP\n");
  EXPECT_NE(breaks.out.find("b.asm(8193): Error: Bad opcode\n F^OO\n"), std::string::npos) << breaks.out;
  EXPECT_NE(breaks.out.find("b.asm(8295): Error: Bad opcode\n B^AR\n"), std::string::npos);
  EXPECT_NE(breaks.out.find("b.asm(8397): Error: Bad opcode\n Z^AP\n"), std::string::npos);
  // A NUL behind a carriage return break in the second block still stops the run.
  RunResult nul = Assemble("n.asm", filler + hundred + ";c\r\n" + hundred + std::string(" NOP\0\n", 6) + " NOP\n");
  EXPECT_EQ(nul.status, 1);
  EXPECT_NE(nul.out.find("Input file error"), std::string::npos);
}

}  // namespace
}  // namespace ta51::testing
