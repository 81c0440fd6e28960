#include "symbols/expression.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>
#include <utility>

#include "symbols/symbols.h"

namespace ta51 {
namespace {

class ExpressionTest : public ::testing::Test {
 protected:
  ExpressionTest() {
    as.ListStream = std::tmpfile();
    as.opt.PredefinedSymbolsEnabled.bits = 1;
    Define("START", 0x10, code1, T_CODE);
    Define("FINISH", 0x30, code1, T_CODE);
    Define("ZERO", 0, code1, T_CODE);
    Define("OTHER", 5, code2, T_CODE);
    Define("TABLE", 0x10, code2, T_CODE);
    Define("ABSL", 0x40, absolute, T_CODE);
    Define("K", 3, nullptr, T_NUMBER);
    Define("EXT", 5, nullptr, T_CODE, REL_XREF);
    Define("EXT2", 6, nullptr, T_CODE, REL_XREF);
    Define("SEGN", 3, nullptr, T_RSEGMENT, T_CODE);
    Define("DECL", 0, nullptr, T_DECLARED);
    Define("TXT", 4, nullptr, T_CODE, REL_NULL, "R1+4");
  }
  ~ExpressionTest() override {
    std::fclose(console.out);
    std::fclose(console.err);
  }

  SegmentEntry* AddSegment(int32_t number, int32_t kind, uint32_t location) {
    SegmentEntry& segment = as.Segments.entries.emplace_back();
    segment.type = T_CODE;
    segment.kind = kind;
    segment.number = number;
    segment.location = location;
    return &segment;
  }
  void Define(const char* name, int32_t value, SegmentEntry* segment, int32_t type,
              int32_t relocation = REL_NULL, std::string_view stored = {}) {
    SymbolDefinition definition;
    definition.value = value;
    definition.segment = segment;
    definition.type = type;
    definition.relocation = relocation;
    definition.expression = stored;
    DefineSymbol(as, (std::string(name) + "\n").c_str(), definition);
  }
  // Evaluates `source` as a fresh line; the list file then holds only its reports.
  int32_t Eval(const std::string& source, std::string* buffer = nullptr, bool simple = false) {
    FlushListBuffer(as);  // reports wait in the list buffer like listed lines
    std::fclose(as.ListStream);
    as.ListStream = std::tmpfile();
    as.Line.text = source + "\n";
    as.Line.offset = 0;
    as.LineHasError = false;
    as.ExprUndefined = false;
    ExprValue expr;
    expr.TolerateUnknown = tolerate;
    return EvaluateExpression(as, expr, buffer, simple);
  }
  // Evaluates with a text buffer, which then stands in `text`.
  int32_t Text(const std::string& source) {
    text.clear();
    return Eval(source, &text);
  }
  bool Reported(const std::string& message) {
    std::string all;
    FlushListBuffer(as);
    std::rewind(as.ListStream);
    for (int c; (c = std::fgetc(as.ListStream)) != EOF;) all.push_back(static_cast<char>(c));
    return all.find("Error: " + message) != std::string::npos;
  }

  Console console{std::tmpfile(), std::tmpfile(), nullptr};
  Assembler as{console};
  SegmentEntry* code1 = AddSegment(1, kKindUnit, 0x20);
  SegmentEntry* code2 = AddSegment(2, kKindUnit, 0);
  SegmentEntry* absolute = AddSegment(7, kKindAbsolute, 0x100);
  std::string text;
  bool tolerate = false;
};

TEST_F(ExpressionTest, AbsoluteValues) {
  const std::pair<std::string, int32_t> cases[] = {
      {"HIGH 1234H + 1", 0x12}, {"LOW 1234H", 0x34}, {"2 + HIGH 1234H + 1", 0x14}, {"NOT 0", -1},
      {"5 NOT 3", ~3}, {"-1 SHR 1", 0}, {"(-1) SHR 1", -1}, {"1 SHL 32", 1}, {"1 shl 33", 2},
      {"-2 * 3 + 1", -5}, {"2 + 3 * 4", 14}, {"1 + 2 = 3", 1}, {"1 OR 2 AND 0", 1}, {"-1 < 0", 1},
      {"3 <> 4 XOR 3 >= 4", 1}, {"1EQ 1", 1}, {"1OR 2", 3}, {"7 / -2", -3}, {"-7 MOD 3", -1},
      {"80000000H / -1", INT_MIN}, {"80000000H MOD -1", 0}, {"0FFFFFFFFH + 2", 1}, {"7FFFFFFFH * 2", -2},
      {"101B", 5}, {"12D", 12}, {"0BH", 11}, {"17O", 15}, {"17q", 15}, {"0x1F", 31}, {"%101 + 1", 6},
      {"@17", 15}, {"&12", 12}, {"0x", 0}, {"0FFFFFFFFFH", -1}, {"+5", 5},
      {std::string(30, '0') + "1B", 1}, {std::string(31, '0') + "1H", 1},  // 32 characters; H not counted
      {"'A'", 0x41}, {"'AB' + 1", 0x4143}, {"'ABCD'", 0x41424344}, {"'''", 0x27}, {"'A''B'", 0x412742},
      {std::string(200, '(') + "7" + std::string(200, ')'), 7}};
  for (const auto& [source, value] : cases) EXPECT_EQ(Eval(source), value) << source;
  EXPECT_EQ(as.ErrorCount, 0);
  // The cursor stops on the character that ended the expression.
  EXPECT_EQ(Eval("  1 + 2   , 9"), 3);
  EXPECT_EQ(as.Line.Peek(), ',');
}

TEST_F(ExpressionTest, FaultsAreReportedAndYieldZero) {
  const std::pair<std::string, const char*> cases[] = {
      {"+ 5", "Syntax error"}, {"+-5", "Syntax error"}, {";", "Syntax error"}, {"'AB", "Syntax error"},
      {std::string(31, '0') + "1B", "Overflow"}, {std::string(33, '1'), "Overflow"}, {"12AC", "Bad number"},
      {"12AB", "Bad number"}, {"'ABCDE'", "Too many characters"}, {"'\x80'", "Type mismatch"},
      {"(1 + 2", "Missing )"}, {"5 / (3 - 3)", "Divide by zero"}, {std::string(20000, '(') + "7", "Overflow"},
      {std::string(20000, '-') + "7", "Overflow"}};
  for (const auto& [source, message] : cases) {
    EXPECT_EQ(Eval(source), 0) << source;
    EXPECT_TRUE(Reported(message)) << source;
  }
  EXPECT_EQ(as.ErrorCount, 14);
  EXPECT_EQ(as.ExprDepth, 0);
}

TEST_F(ExpressionTest, RelocatableTermsGiveLinkerText) {
  const std::pair<std::string, std::string> cases[] = {
      {"HIGH (TABLE + 1)", " HIGH ((R2+10)+1)"}, {"EXT - 3", "X5-3"}, {"START + 1", "(R1+10)+1"},
      {"ZERO <= 1 or TXT", "R1 LE 1 OR (R1+4)"}, {"`SIZE SEGN", " `SIZE L3"}, {"ABSL + 1", ""},
      // Pairs that do not cancel go to the linker as they stand.
      {"START - OTHER", "(R1+10)-(R2+5)"}, {"5 + FINISH - START", "5+(R1+30)-(R1+10)"},
      {"FINISH - HIGH START", "(R1+30)- HIGH (R1+10)"}, {"EXT - EXT2", "X5-X6"}, {"TXT - TXT", "(R1+4)-(R1+4)"},
      // Pairs of one segment cancel to an absolute number.
      {"FINISH - START", ""}, {"FINISH - START + 1", ""}, {"(FINISH - START) * 2", ""}, {"(FINISH) - (START)", ""}};
  for (const auto& [source, expected] : cases) {
    Text(source);
    EXPECT_EQ(text, expected) << source;
  }
  EXPECT_EQ(as.ErrorCount, 0);
  EXPECT_TRUE(as.Symbols.Find("EXT", false, true)->flags & kSymUsedExternal);
  EXPECT_EQ(Text("(FINISH - START) * 2"), 0x40);
  EXPECT_FALSE(as.ExprRelocatable);
  EXPECT_EQ(as.ExprType, T_NUMBER);
  EXPECT_EQ(Text("START + 1"), 1);  // the right operand's value
  EXPECT_TRUE(as.ExprRelocatable);
  EXPECT_EQ(as.ExprType, T_CODE);
  EXPECT_EQ(as.ExprSegment, code1);
  EXPECT_EQ(Text("ABSL + 1"), 0x41);
  EXPECT_EQ(as.ExprType, T_NUMBER);
  EXPECT_EQ(Text("HIGH (TABLE + 1)"), 1);
  EXPECT_EQ(as.ExprType, T_NUMBER);
  text = "OLD";
  EXPECT_EQ(Eval("3", &text), 3);
  EXPECT_EQ(text, "3");
}

TEST_F(ExpressionTest, OnlyABareLabelIsALoneTermForBranches) {
  as.CurrentSegment = code1;
  Text("FINISH");
  EXPECT_EQ(as.ExprTermCount, 0);
  EXPECT_EQ(as.ExprSegmentOffset, 0x30);
  Text("$");
  EXPECT_EQ(text, "(R1+20)");
  EXPECT_EQ(as.ExprTermCount, 0);
  EXPECT_EQ(as.ExprSegmentOffset, 0x20);
  Text("(START)");
  EXPECT_GT(as.ExprTermCount, 0);
  EXPECT_EQ(as.ExprType, T_CODE);
  Text("START + 1");
  EXPECT_GT(as.ExprTermCount, 0);
  Text("+START");
  EXPECT_EQ(as.ExprTermCount, 0);
}

TEST_F(ExpressionTest, WithoutBufferOffsetsArePlainNumbers) {
  EXPECT_EQ(Eval("START + 1"), 0x11);
  Eval("EXT");
  EXPECT_TRUE(Reported("External symbols not allowed in expression"));
  Eval("SEGN");
  EXPECT_TRUE(Reported("Segment symbol not allowed in this expression"));
  Eval("TXT + 1");
  EXPECT_TRUE(Reported("Unexpected relocatable expression"));
  Eval("$");
  EXPECT_TRUE(Reported("Program counter not initialised"));
  as.CurrentSegment = absolute;
  EXPECT_EQ(Eval("$ + 1"), 0x101);
  as.CurrentSegment = code1;
  int errors = as.ErrorCount;
  EXPECT_EQ(Eval("$"), 0);
  EXPECT_EQ(as.ErrorCount, errors + 1);
  Eval("`SIZE START");
  EXPECT_TRUE(Reported("Segment name expected"));
}

TEST_F(ExpressionTest, ForwardReferencesDependOnThePass) {
  EXPECT_EQ(Eval("LATER + K"), 2 * kUndefinedValue);
  EXPECT_TRUE(as.ExprUndefined);
  EXPECT_EQ(as.ErrorCount, 0);
  EXPECT_EQ(Eval("DECL"), kUndefinedValue);
  EXPECT_TRUE(as.ExprUndefined);
  tolerate = true;
  EXPECT_EQ(Eval("LATER + 1"), 1);
  EXPECT_FALSE(as.ExprUndefined);
  tolerate = false;
  as.SecondPass = 1;
  EXPECT_EQ(Eval("LATER + 1"), 0);
  EXPECT_TRUE(Reported("No such label"));
}

TEST_F(ExpressionTest, SimpleRelocatableRule) {
  EXPECT_EQ(Eval("START + 1", nullptr, true), 0x11);
  EXPECT_EQ(Eval("FINISH - START + 1", nullptr, true), 0x21);
  EXPECT_EQ(as.ErrorCount, 0);
  for (const char* bad : {"START + FINISH", "START - OTHER", "START * 2", "1 AND START", "START = OTHER"}) {
    Eval(bad, nullptr, true);
    EXPECT_TRUE(Reported("Expression not simple relocatable")) << bad;
  }
}

}  // namespace
}  // namespace ta51
