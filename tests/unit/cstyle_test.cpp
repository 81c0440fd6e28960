// The C-style preprocessor line by line, its #if expressions, and in whole
// runs where the two passes and the bounds matter. Expected texts and values
// are worked out from the rules of the language, not taken from output.
#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "run_helpers.h"
#include "textlang/cconst_expr.h"
#include "textlang/cstyle.h"

namespace ta51 {
namespace {

class CStyleLines : public ::testing::Test {
 protected:
  CStyleLines() {
    as.ListStream = std::tmpfile();
    as.CurrentFileName = "t.asm";
    as.CStyle.Running = true;
  }
  ~CStyleLines() override {
    std::fclose(console.out);
    std::fclose(console.err);
  }

  // One line through the stage: the delivered text without its line end, or
  // nothing when the line was consumed or dropped.
  std::optional<std::string> Feed(const std::string& line) {
    ++as.LineNumber;
    as.Line.text = line + "\n";
    bool inComment = false;
    if (!RunCStyleStage(as, inComment)) return std::nullopt;
    std::string text = as.Line.text;
    text.pop_back();
    return text;
  }
  std::string Out(const std::string& line) { return Feed(line).value_or("<dropped>"); }
  // Lines through the stage; the delivered ones joined by `|`.
  std::string Delivered(std::initializer_list<const char*> lines) {
    std::string all;
    for (const char* line : lines)
      if (auto text = Feed(line)) all += (all.empty() ? "" : "|") + *text;
    return all;
  }
  int32_t Eval(const std::string& expression) { return CConstExpr(as).Evaluate(expression, "#if"); }
  // The list file so far: every report.
  std::string Reports() {
    FlushListBuffer(as);  // reports wait in the list buffer like listed lines
    std::fflush(as.ListStream);
    std::rewind(as.ListStream);
    std::string all;
    for (int c; (c = std::fgetc(as.ListStream)) != EOF;) all.push_back(static_cast<char>(c));
    return all;
  }

  Console console{std::tmpfile(), std::tmpfile(), nullptr};
  Assembler as{console};
};

TEST_F(CStyleLines, TheWorkedExample) {
  EXPECT_EQ(Delivered({"#define SIZE 4", "#define PAIR(a,b) a##b + SIZE", "        MOV  A,#PAIR(LO,HI)"}),
            "        MOV  A,#LOHI + 4");
}

TEST_F(CStyleLines, DirectiveLinesAndDefinitions) {
  Feed("  #  define X 1");
  Feed("#define F(a) [a]");
  Feed("#define G (a) [a]");
  Feed("#define H() h");  // an empty list is no list
  Feed("#define C1 1 // note");
  Feed("#define C2 2 /* note */");
  Feed("#define EMPTY");
  Feed("#define A B");
  Feed("#define B 2");
  Feed("#define J(x, y) x ## _ ## y");
  Feed("#define K p ## q");  // no parameters: the ## stays
  EXPECT_EQ(Out("#DEFINE X 1"), "#DEFINE 1 1");  // no directive: an ordinary line
  EXPECT_EQ(Out("#pragma X"), "#pragma 1");
  EXPECT_EQ(Out(" DB F(X),G,H(),H,C1,C2,EMPTY,A"), " DB [1],(a) [a],h(),h,1,2,,2");
  EXPECT_EQ(Out(" DB \"X\",X,'X' // X"), " DB \"X\",1,'1' // X");
  EXPECT_EQ(Out(" MOV R0,#X ; X"), " MOV R0,#1 ; 1");
  EXPECT_EQ(Out("  ; X"), "  ; X");
  EXPECT_EQ(Out("// X"), "// X");
  EXPECT_EQ(Out(" DB J(LO, HI),K,0X"), " DB LO_HI,p ## q,01");  // in 0X the word X begins behind the digit
  Feed("#define X 5");  // a new body, no message
  Feed("#undef NOSUCH");
  Feed("#undef A");
  EXPECT_EQ(Out(" DB X,A"), " DB 5,A");
  EXPECT_EQ(Reports(), "");
}

TEST_F(CStyleLines, ArgumentsAreText) {
  Feed("#define F(a,b) a-b");
  Feed("#define ONE 1");
  // An argument runs to the next `,` or `)`: parentheses and quotes do not
  // hold it together.
  EXPECT_EQ(Out(" DB F((1,2),3)"), " DB (1-2,3)");
  EXPECT_EQ(Out(" DB F(\"a,b\", 'x')"), " DB \"a-b 'x')");  // b" stands behind an open quote
  EXPECT_EQ(Out(" DB F (ONE , 2 )"), " DB 1-2");
  // Too many: reading stops behind the second comma. Too few: the
  // parameter's name stays. Neither is reported.
  EXPECT_EQ(Out(" DB F(1,2,3)"), " DB 1-23)");
  EXPECT_EQ(Out(" DB F(1)"), " DB 1-b");
  EXPECT_EQ(Out(" F = 2"), " F = 2");  // without `(` the name stands for itself
  EXPECT_EQ(Reports(), "");
  EXPECT_FALSE(Feed(" DB F(1,"));
  EXPECT_FALSE(Feed("#define P(a,a) a"));
  EXPECT_FALSE(Feed("#define Q(a b) a"));
  const std::string reports = Reports();
  EXPECT_NE(reports.find("t.asm(9): Error: Missing ) : arguments of F"), std::string::npos);
  EXPECT_NE(reports.find("t.asm(10): Error: Syntax error : parameter a named twice in P"), std::string::npos);
  EXPECT_NE(reports.find("t.asm(11): Error: Syntax error : parameter list of Q"), std::string::npos);
  EXPECT_FALSE(as.LineHasError);  // a dropped line leaves no mark on the next
}

TEST_F(CStyleLines, ParametersArePutInOneAfterTheOther) {
  Feed("#define F(a,b) a-b");
  Feed("#define T(a,b) a b");
  Feed("#define M b");
  Feed("#define S(x) x+x");
  Feed("#define Q(s) DB \"s\",s");
  // The argument of a is searched for b in its turn.
  EXPECT_EQ(Out(" DB F(b,a)"), " DB a-a");
  // Not expanded before it is put in: M stays M while b is replaced, and
  // the rescan makes it b only then.
  EXPECT_EQ(Out(" DB T(M,X)"), " DB b X");
  // The scan goes on behind the inserted text, so x is not replaced in it.
  EXPECT_EQ(Out(" DB S(x y)"), " DB x y+x y");
  EXPECT_EQ(Out(" Q(5)"), " DB \"s\",5");  // the parameter in quotes stays
  EXPECT_EQ(Reports(), "");
}

TEST_F(CStyleLines, RecursionStopsAsInC) {
  Feed("#define A A");
  Feed("#define B C+1");
  Feed("#define C B*2");
  Feed("#define F(x) F(x)+G");
  Feed("#define G F");
  Feed("#define DOUBLE(x) (2*(x))");
  EXPECT_EQ(Out(" DB A,B,C,F(1)"), " DB A,B*2+1,C+1*2,F(1)+F");
  // The inner calls come from an argument, which is the caller's text.
  EXPECT_EQ(Out(" DB DOUBLE(DOUBLE(DOUBLE(3)))"), " DB (2*((2*((2*(3))))))");
  EXPECT_EQ(Reports(), "");
}

TEST_F(CStyleLines, BoundsOfExpansion) {
  Feed("#define E0 x x");
  for (int n = 1; n <= 15; ++n)
    Feed("#define E" + std::to_string(n) + " E" + std::to_string(n - 1) + " E" + std::to_string(n - 1));
  EXPECT_FALSE(Feed(" DB E15"));  // 65536 words of x
  EXPECT_NE(Reports().find("Overflow : #define macros make the line longer than 65536 characters"),
            std::string::npos);
  // A chain of 500 names, each used 2,000 times on one line: short text, but
  // a million replacements.
  for (int n = 1; n < 500; ++n) Feed("#define M" + std::to_string(n) + " M" + std::to_string(n + 1));
  std::string line = " DB";
  for (int n = 0; n < 2000; ++n) line += " M1";
  EXPECT_FALSE(Feed(line));
  EXPECT_NE(Reports().find("Overflow : #define macros put more than 4194304 characters into one line"),
            std::string::npos);
  // A call whose arguments bring its own name back escapes the paint and
  // goes round for ever but for the bound of the line.
  Feed("#define R(x) x(x)");
  FlushListBuffer(as);
  std::fclose(as.ListStream);
  as.ListStream = std::tmpfile();
  EXPECT_FALSE(Feed(" DB R(R)"));
  EXPECT_NE(Reports().find("Overflow : #define macros put more than 4194304 characters into one line"),
            std::string::npos);
  // Calls nested in arguments have no bound of their own: each takes one `)`.
  Feed("#define I(x) x");
  std::string nested = " DB ";
  for (int n = 0; n < 1000; ++n) nested += "I(";
  EXPECT_EQ(Out(nested + "1" + std::string(1000, ')')), " DB 1");
}

TEST_F(CStyleLines, BlockStates) {
  EXPECT_EQ(Delivered({"#if 0", "a", "#elif 0", "b", "#elif 1", "c", "#elif 1", "d", "#else", "e", "#endif"}), "c");
  EXPECT_EQ(Delivered({"#if 1", "a", "#else", "b", "#else", "c", "#endif"}), "a");
  EXPECT_EQ(Delivered({"#if 0", "a", "#else", "b", "#else", "c", "#endif", "z"}), "b|z");
  EXPECT_EQ(Delivered({"#if 0", "#if 1", "a", "#else", "b", "#endif", "c", "#else", "d", "#endif"}), "d");
  EXPECT_EQ(Delivered({"#if 1", "#if 0", "a", "#endif", "b", "#endif", "c"}), "b|c");
  EXPECT_EQ(Delivered({"#if 1", "#elif 1/0", "a", "#endif", "#if 0", "#if 1/0", "#endif", "#endif"}), "");
  EXPECT_EQ(Delivered({"#define D", "#ifdef D", "a", "#endif", "#ifndef D", "b", "#endif", "#ifndef U", "c", "#endif"}),
            "a|c");
  EXPECT_EQ(Reports(), "");  // no test was run where none may be
  EXPECT_EQ(as.CStyle.DirectiveState, 0);
  EXPECT_EQ(Delivered({"#else", "#elif 1", "#endif", "#ifdef", "a", "#endif", "#ifndef", "b", "#endif"}), "b");
  const std::string reports = Reports();
  for (const char* message : {"Unexpected #else", "Unexpected #elif", "Unexpected #endif", "#ifdef needs a name",
                              "#ifndef needs a name"})
    EXPECT_NE(reports.find(message), std::string::npos) << message;
}

TEST_F(CStyleLines, ExpressionLevels) {
  const std::pair<const char*, int32_t> cases[] = {
      {"1 + 2 * 3", 7}, {"(1 + 2) * 3", 9}, {"7 / 2", 3}, {"-7 / 2", -3}, {"7 % 3", 1}, {"-7 % 3", -1},
      {"1 << 4", 16}, {"-16 >> 2", -4}, {"1 < 2", 1}, {"2 <= 2", 1}, {"3 >= 4", 0}, {"2 > 1 == 1", 1},
      {"1 == 1 != 0", 1}, {"1 | 2 ^ 3", 1}, {"6 & 3", 2}, {"1 | 6 & 3", 3}, {"2 ^ 6 & 3", 0},
      {"!0", 1}, {"!5", 0}, {"~0", -1}, {"- - 1", 1}, {"+4", 4}, {"1 && 2", 1}, {"0 || 3", 1}, {"0 && 1 || 1", 1},
      {"1 ? 2 : 3", 2}, {"0 ? 2 : 3", 3}, {"0 || 0 ? 4 : 5", 5}, {"1 ? 0 ? 6 : 7 : 8", 7},
      {"0x1F", 31}, {"0X", 0}, {"010", 10}, {"10U + 2L", 12}, {"UNDEFINED", 0}, {"UNDEFINED + 1", 1},
      {"'A'", 65}, {"'\\n'", 10}, {"'\\''", 39}, {"'\\xFF'", 255}, {"'\\377'", 255}, {"'AB'", 0x4142},
  };
  for (const auto& [expression, value] : cases) EXPECT_EQ(Eval(expression), value) << expression;
  EXPECT_EQ(Reports(), "");
}

TEST_F(CStyleLines, SignedCorners) {
  const std::pair<const char*, int32_t> cases[] = {
      {"0xFFFFFFFF", -1}, {"0xFFFFFFFF == -1", 1}, {"0x80000000 < 0", 1}, {"2147483647 + 1", INT32_MIN},
      {"4294967296", 0}, {"1 << 31", INT32_MIN}, {"1 << 33", 2}, {"-1 >> 31", -1}, {"-1 >> 32", -1},
      {"-2147483648", INT32_MIN}, {"(-2147483647 - 1) / -1", INT32_MIN}, {"(-2147483647 - 1) % -1", 0},
      {"-2147483647 - 1 < 2147483647", 1}, {"65536 * 65536", 0},
  };
  for (const auto& [expression, value] : cases) EXPECT_EQ(Eval(expression), value) << expression;
  EXPECT_EQ(Reports(), "");
}

TEST_F(CStyleLines, ExpressionNames) {
  Feed("#define X");
  Feed("#define Y 1");
  Feed("#define A 2");
  Feed("#define B A+1");
  Feed("#define R R");
  Feed("#define MAX(a,b) ((a) > (b) ? (a) : (b))");
  Feed("#define TWICE(a) (2 * a)");
  Feed("#define HASX defined(X)");
  Feed("#define HASZ defined Z");
  const std::pair<const char*, int32_t> cases[] = {
      {"defined X", 1}, {"defined(X)", 1}, {"defined ( X )", 1}, {"defined(X) && defined(Y)", 1},
      {"defined(X) && defined(Z)", 0}, {"defined X || 0", 1}, {"defined Y", 1}, {"B * 2", 4},
      {"R", 0}, {"defined R", 1}, {"MAX(3, 7)", 7}, {"MAX(1, 9) + TWICE(TWICE(2))", 17}, {"HASX", 1}, {"HASZ", 0},
  };
  for (const auto& [expression, value] : cases) EXPECT_EQ(Eval(expression), value) << expression;
  EXPECT_EQ(Reports(), "");
}

TEST_F(CStyleLines, ExpressionFailures) {
  // Each reports once, the first fault only, and gives the value in hand.
  const std::pair<const char*, const char*> cases[] = {
      {"(1", "Missing ) : #if expression"},
      {"1/0", "Divide by zero : #if expression"},
      {"5 % (2 - 2)", "Divide by zero : #if expression"},
      {"", "Syntax error : #if needs an expression"},
      {"1 2", "Syntax error : unexpected text in #if expression: 2"},
      {"10H", "Syntax error : unexpected text in #if expression: H"},
      {"1 +", "Syntax error : operand expected in #if expression"},
      {"1 = 1", "Syntax error : unexpected text in #if expression: = 1"},
      {"'A", "Syntax error : character constant not closed"},
      {"''", "Syntax error : empty character constant"},
      {"defined", "Syntax error : defined needs a name"},
      {"defined(X", "Missing ) : defined"},
      {"1 ? 2", "Syntax error : ':' expected in #if expression"},
  };
  for (const auto& [expression, message] : cases) {
    FlushListBuffer(as);
    std::fclose(as.ListStream);
    as.ListStream = std::tmpfile();
    Eval(expression);
    EXPECT_NE(Reports().find(std::string("Error: ") + message + "\n"), std::string::npos) << expression;
    EXPECT_EQ(Reports().find("Error:", Reports().find("Error:") + 1), std::string::npos) << expression;
  }
  FlushListBuffer(as);
  std::fclose(as.ListStream);
  as.ListStream = std::tmpfile();
  EXPECT_EQ(Eval("0 && 1/0"), 0);  // not evaluated, not reported
  EXPECT_EQ(Eval("1 || 1/0"), 1);
  EXPECT_EQ(Eval("1 ? 2 : 1/0"), 2);
  EXPECT_EQ(Reports(), "");
  EXPECT_EQ(Eval(std::string(300, '(') + "1" + std::string(300, ')')), 0);
  EXPECT_NE(Reports().find("Overflow : #if expression nests more than 256 deep"), std::string::npos);
}

}  // namespace

namespace testing {
namespace {

class CStyleRuns : public AssemblyTest {};

// The load records among the records that Body gives.
std::string LoadRecords(const std::string& body) {
  std::string records;
  for (size_t at = 0; (at = body.find("LR", at)) != std::string::npos; at = body.find(' ', at) + 1)
    if (at == 0 || body[at - 1] == ' ') records += body.substr(at, body.find(' ', at) + 1 - at);
  return records;
}

TEST_F(CStyleRuns, TheTableStandsThroughBothPasses) {
  Write("defs.inc", "#ifndef DEFS_INC\n#define DEFS_INC\n#define SIZE 7\n#endif\n");
  // LATE and LATER are defined further down: #ifdef LATE is false in the
  // first pass and true in the second, which also expands LATER from its
  // start. The guarded file defines SIZE in the first pass, and the table
  // keeps it when the guard is closed in the second.
  std::string body = Body(
      "\tCSEG AT 0\n#include \"defs.inc\"\n#include \"defs.inc\"\n#ifdef LATE\n\tDB 1\n#else\n\tDB 2\n#endif\n"
      "\tMOV A,#LATER\n\tDB SIZE\n#define LATE\n#define LATER 9\n\tEND\n");
  EXPECT_EQ(LoadRecords(body), "LR01. LR7409. LR07. ");
}

TEST_F(CStyleRuns, CodeUnderAGuardIsAPhaseError) {
  // The first pass assembles the DB, the second drops it: what follows
  // would move, with nothing but a missing byte to show for it.
  Write("hw.inc", "#ifndef HW_INC\n#define HW_INC\n\tDB 10\n#endif\n");
  RunResult run = Assemble("g.asm", "\tCSEG AT 0\n#include \"hw.inc\"\nL:\tNOP\n\tSJMP L\n\tEND\n");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("hw.inc(4): Error: Phase error : code before this #endif differs from the first pass\n"
                         "^#endif\n"),
            std::string::npos)
      << run.out;
  EXPECT_FALSE(Exists("g.OBJ"));
  // Blocks that decide otherwise in the second pass but make the same code
  // pass, as does a guard around definitions only.
  Write("ok.inc", "#ifndef OK_INC\n#define OK_INC\nV\tEQU\t3\n#endif\n");
  EXPECT_EQ(LoadRecords(Body("\tCSEG AT 0\n#include \"ok.inc\"\n#ifdef LATE\n\tDB 1\n#else\n\tDB V\n#endif\n"
                             "#define LATE\n\tEND\n")),
            "LR01. ");
}

TEST_F(CStyleRuns, BlockLeftOpen) {
  RunResult run = Assemble("a.asm", "\tNOP\n#if 1\n\tNOP\n");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("a.asm(4): Error: Missing #endif for the #if of line 2\n^#if 1\n"), std::string::npos)
      << run.out;
  EXPECT_FALSE(Exists("a.OBJ"));
  // END ends the source: the #endif behind it is never read.
  EXPECT_EQ(Assemble("b.asm", "#ifdef X\n\tEND\n#else\n\tEND\n#endif\n").status, 0);
  // A block may open in an included file and close in the including one.
  Write("open.inc", "#if 1\n");
  EXPECT_EQ(Assemble("c.asm", "#include open.inc\n\tNOP\n#endif\n\tEND\n").status, 0);
}

TEST_F(CStyleRuns, LineNumbersInReadersOfTheirOwn) {
  // A false IF section and a macro definition read their lines themselves.
  RunResult run = Assemble("d.asm", "\tIFEQ 1\n\tNOP\n#endif\n\tENDC\nM\tMACRO\n#else\n\tENDM\n\tEND\n");
  EXPECT_NE(run.out.find("d.asm(3): Error: Unexpected #endif"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("d.asm(6): Error: Unexpected #else"), std::string::npos) << run.out;
}

TEST_F(CStyleRuns, IncludeInTheA51Dialect) {
  Write("v.inc", "VAL\tEQU\t5\n");
  Write("w.inc", "REG2\tEQU\tR4\n");
  EXPECT_EQ(LoadRecords(Body("\tCSEG AT 0\n#include \"v.inc\"\n#define NAME w.inc\n#include NAME\n"
                             "#define REG R3\n\tMOV REG,#VAL\n\tMOV REG2,#VAL\n\tEND\n",
                             "s.a51")),
            "LR7B05. LR7C05. ");
}

TEST_F(CStyleRuns, CommandLineDefinitions) {
  EXPECT_EQ(LoadRecords(Body("\tCSEG AT 0\n#ifdef DEBUG\n\tDB SIZE,TWICE(3)\n#endif\n\tEND\n")), "");
  Write("s.asm", "\tCSEG AT 0\n#ifdef DEBUG\n\tDB SIZE,TWICE(3)\n#endif\n\tEND\n");
  EXPECT_EQ(Run({"s.asm;", "/NOLOGO", "/DDEBUG", "/DSIZE=10", "/DTWICE(x)=2*x"}).status, 0);
  EXPECT_NE(Read("s.OBJ").find("LR0A.\r\nLR06."), std::string::npos) << Read("s.OBJ");
  RunResult bad = Run({"s.asm;", "/NOLOGO", "/DF(1)=2"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.out.find("s.asm: Error: Syntax error : parameter list of F\n^/DF(1)=2\n"), std::string::npos)
      << bad.out;
}

TEST_F(CStyleRuns, DirectiveOperandsEndAtComments) {
  // The /* left open runs over the next lines to its */, which are dropped;
  // `;` ends a body, but not inside a character constant.
  EXPECT_EQ(LoadRecords(Body("#define X 1 /* start\n DB 9\n end */ NOP\n\tCSEG AT 0\n\tDB X\n"
                             "#define Y 2 ; note\n\tDB Y+1\n#define Q ';' ; note\n\tDB Q\n\tEND\n")),
            "LR01. LR03. LR3B. ");
}

TEST_F(CStyleRuns, ARunRepeatsInProcess) {
  const std::string source = "#define N 3\n\tCSEG AT 0\n\tDB N\n#if N > 2\n\tDB 4\n#endif\n\tEND\n";
  EXPECT_EQ(LoadRecords(Body(source)), "LR03. LR04. ");
  EXPECT_EQ(LoadRecords(Body(source)), "LR03. LR04. ");
}

}  // namespace
}  // namespace testing
}  // namespace ta51
