// The percent macro language in whole runs: what the two passes must agree
// on, line numbers around expansions, the bounds not covered by the golden
// cases, and the order of texts that the comparisons use.
#include <string>

#include "run_helpers.h"
#include "textlang/percent.h"

namespace ta51::testing {
namespace {

class Percent : public AssemblyTest {
 protected:
  // The load records of assembling `source` as p.a51, which must succeed.
  std::string Loads(const std::string& source) {
    RunResult run = Assemble("p.a51", source);
    EXPECT_EQ(run.status, 0) << run.out;
    std::string object = Read("p.OBJ"), records;
    for (size_t at = 0; at < object.size(); at = object.find('\n', at) + 1) {
      if (object.compare(at, 2, "LR") == 0) records += object.substr(at, object.find('\r', at) - at) + " ";
      if (object.find('\n', at) == std::string::npos) break;
    }
    return records;
  }
};

std::string Repeat(const std::string& text, int times) {
  std::string all;
  for (int n = 0; n < times; ++n) all += text;
  return all;
}

TEST(PercentCompare, OrdersBytesUnsignedAndTheShorterFirst) {
  EXPECT_EQ(PercentCompare("abc", "abc"), 0);
  EXPECT_EQ(PercentCompare("", ""), 0);
  EXPECT_LT(PercentCompare("ab", "abc"), 0);
  EXPECT_GT(PercentCompare("b", "abc"), 0);
  EXPECT_LT(PercentCompare("", "a"), 0);
  EXPECT_GT(PercentCompare("\x80", "a"), 0);  // 80H sorts after 61H
  EXPECT_LT(PercentCompare("A", "a"), 0);
}

// The second pass must see each definition where the first saw it, and
// must give the same local names.
TEST_F(Percent, BothPassesAgreeOnRedefinitionsAndLocalNames) {
  EXPECT_EQ(Loads("\tCSEG AT 0\n%*DEFINE (F) (NOP)\n\t%F\n%*DEFINE (F) (RET)\n\t%F\n"), "LR00. LR22. ");
  const std::string locals = "%*DEFINE (L) LOCAL X (\n%X:\tSJMP %X)\n\tCSEG AT 0\n\t%L\n\t%L\n\tDW X00, X01\n";
  EXPECT_EQ(Loads(locals), "LR80FE. LR80FE. LR0000. LR0002. ");
}

// White space other than blanks and tabs separates local names too; a form
// feed once made the reader take empty names without end.
TEST_F(Percent, AnyWhiteSpaceSeparatesLocalNames) {
  const std::string source = "%*DEFINE (L) LOCAL X\fY\vZ (%X: NOP\n%Y: NOP\n%Z: NOP)\n\tCSEG AT 0\n\t%L\n"
                             "\tDW X00, Y00, Z00\n";
  EXPECT_EQ(Loads(source), "LR00. LR00. LR00. LR0000. LR0001. LR0002. ");
}

// The counter runs on in hexadecimal; the 257th call gets three digits.
TEST_F(Percent, LocalNamesTakeThreeDigitsFromTheInstance256On) {
  std::string source = "%*DEFINE (L) LOCAL X (%X: NOP)\n%*DEFINE (N) (NOP)\n\tCSEG AT 0\n" +
                       Repeat("\t%L\n\t%N\n", 257) + "\tDW XFF, X100\n";
  EXPECT_NE(Loads(source).find("LR01FE. LR0200. "), std::string::npos);  // 2 * 255, 2 * 256
}

// A run is repeatable in the same process: nothing of the language is left
// in anything but the Assembler of the run.
TEST_F(Percent, SecondRunInTheSameProcessGivesTheSameObject) {
  const std::string source = "%*DEFINE (L(V)) LOCAL X (%X: MOV A,#%V)\n\tCSEG AT 0\n\t%L(1)\n\tSJMP X00\n";
  std::string first = Loads(source);
  EXPECT_EQ(first, "LR7401. LR80FC. ");
  EXPECT_EQ(Loads(source), first);
}

// Lines of an expansion carry the number of the call; the file line behind
// them its own, also when a false IF runs from the body into the file.
TEST_F(Percent, MessagesOfAnExpansionCarryTheCallLine) {
  const std::string source =
      "%*DEFINE (B) (BAD1\n\tNOP\n\tBAD2)\n\t%B\n\tBAD3\n"
      "%*DEFINE (S) (\tIFEQ 1\n\tBAD4)\n\t%S\n\tBAD5\n\tENDC\n\tBAD6\n";
  RunResult run = Assemble("n.a51", source);
  for (const char* message : {"n.a51(4): Error: Bad opcode\nB^AD1", "n.a51(4): Error: Bad opcode\n\tB^AD2",
                              "n.a51(5): Error: Bad opcode\n\tB^AD3", "n.a51(11): Error: Bad opcode\n\tB^AD6"})
    EXPECT_NE(run.out.find(message), std::string::npos) << message << "\n" << run.out;
  // BAD4 and BAD5 stand where IFEQ 1 skips them.
  EXPECT_EQ(run.out.find("n.a51(8)"), std::string::npos) << run.out;
  EXPECT_EQ(run.out.find("n.a51(9)"), std::string::npos) << run.out;
}

// END inside an expansion ends the pass; the second pass starts with no
// expansion left running from the first.
TEST_F(Percent, EndInsideAnExpansionLeavesNothingForTheSecondPass) {
  EXPECT_EQ(Loads("%*DEFINE (E) (DB 1\n\tEND\n\tDB 2)\n\tCSEG AT 0\n\t%E\n\tDB 3\n"), "LR01. ");
}

// A MACRO body run from an expansion, and a MACRO definition read from one,
// do not count the expansion's lines as lines of the file.
TEST_F(Percent, MacroStatementsInsideAnExpansion) {
  const std::string source =
      "M:\tMACRO\n\tDB \\0\n\tENDM\n%*DEFINE (P) (\tM 1\n\tDB 2\nN:\tMACRO\n\tDB 3\n\tENDM\n\tN\n\tDB 4)\n"
      "\tCSEG AT 0\n\t%P\n\tBAD\n";
  RunResult run = Assemble("m.a51", source);
  EXPECT_NE(run.out.find("m.a51(13): Error: Bad opcode"), std::string::npos) << run.out;
  EXPECT_EQ(Loads(source.substr(0, source.size() - 5)), "LR01. LR02. LR03. LR04. ");
}

TEST_F(Percent, RewrittenLineHasABound) {
  const std::string source = "%*DEFINE (W(A)) (; %A%A%A%A%A%A\n\tNOP)\n\tCSEG AT 0\n\t%W(" +
                             std::string(3000, 'x') + ")\n\t%W(" + std::string(2000, 'x') + ")\n";
  EXPECT_EQ(Errors(source, "w.a51"), "Too many characters : a line of W grows past 15360 characters;");
  EXPECT_FALSE(Exists("w.OBJ"));
  EXPECT_FALSE(TemporaryFilesLeft());
  // 12000 characters are allowed: the second call assembles its NOP.
  EXPECT_EQ(Loads(source.substr(0, source.find("\t%W(x")) + source.substr(source.rfind("\t%W("))), "LR00. ");
}

// Outside the .a51 dialect `%` is the binary prefix and no statement: in
// `%EVAL` it has no digit, so the number is 0 and ends at the `E`.
TEST_F(Percent, OtherDialectKnowsNoPercentLanguage) {
  EXPECT_EQ(Errors("\t%*DEFINE (F) (NOP)\n\t%EVAL(1)\n\tDB %1010\n\tDB %EVAL(1)\n"),
            "Bad opcode;Bad opcode;End of operand field expected;");
}

// A function stands right behind its term's operator and is written in upper
// case: behind a blank, or in lower case, `%` is the binary prefix with no
// digit, and the text behind it ends the operand field.
TEST_F(Percent, FunctionNeedsItsPercentAtTheTermAndItsCase) {
  EXPECT_EQ(Errors("\tDB 1 + %EVAL(2)\n\tDB %eval(1)\n", "e.a51"),
            "End of operand field expected;End of operand field expected;");
  EXPECT_EQ(Loads("\tCSEG AT 0\n\tDB 1+%EVAL(2)\n"), "LR03. ");
}

// A definition in a false section is not read: its body lines are skipped
// with the section, and the macro is unknown.
TEST_F(Percent, DefinitionInAFalseSectionDoesNothing) {
  EXPECT_EQ(Errors("\tIFEQ 1\n%*DEFINE (F) (\n\tENDC\n)\n\t%F\n", "f.a51"), "Bad opcode;");
}

}  // namespace
}  // namespace ta51::testing
