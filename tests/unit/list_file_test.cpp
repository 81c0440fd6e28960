#include "output/list_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace ta51;

struct ListFileTest : ::testing::Test {
  FILE* out = std::tmpfile();
  Assembler as{Console{out, out, nullptr}};

  ListFileTest() {
    as.ListStream = std::tmpfile();
    as.LineCount = 10;
    as.CurrentFileName = "T.ASM";
  }
  ~ListFileTest() override { std::fclose(out); }

  std::string Listed() {
    FlushListBuffer(as);  // the text of a run in progress, as far as it goes
    std::fflush(as.ListStream);
    std::rewind(as.ListStream);
    std::string text;
    for (int c; (c = std::fgetc(as.ListStream)) != EOF;) text += static_cast<char>(c);
    return text;
  }
  // Lists a source line, given where its label, opcode, operand and comment start.
  void List(const std::string& text, int label, int opcode, int operand, int comment) {
    as.Line.text = text;
    as.LabelOffset = label, as.OpcodeOffset = opcode, as.OperandOffset = operand, as.CommentOffset = comment;
    ListLine(as);
  }
  int Run(int (*directive)(Assembler&), const std::string& operands) {
    as.Line = {operands + "\n", 0};
    return directive(as);
  }
};

// A row of texts placed at their columns.
std::string Row(const std::vector<std::pair<size_t, std::string>>& parts) {
  std::string row;
  for (const auto& [column, text] : parts) row.append(column - row.size(), ' ').append(text);
  return row + "\n";
}

TEST_F(ListFileTest, FieldColumnsOverrunAndDataRows) {
  as.LineNumber = 7, as.LineValue = 0x10, as.CodeLength = 2;
  as.CodeBuffer[0] = 0x74, as.CodeBuffer[1] = 0x12;
  List("LOOP: MOV A,#12H ; load\n", 0, 6, 10, 17);
  as.CodeLength = 1;
  List("VERYLONGLABEL: MOV R0,A\n", 0, 15, 19, 23);
  as.SavedBytesFlag = true, as.DataListBuffer = {1, 2, 3, 4, 5, 6, 7}, as.CodeLength = 7;
  List("TAB: DB 1,2,3,4,5,6,7\n", 0, 5, 8, 21);
  EXPECT_EQ(Listed(), Row({{0, "    7 0010 74 12"}, {23, "LOOP:"}, {33, "MOV"}, {43, "A,#12H"}, {61, "; load"}}) +
                          Row({{0, "    7 0010 74"}, {23, "VERYLONGLABEL:"}, {38, "MOV"}, {43, "R0,A"}}) +
                          Row({{0, "    7 0010 01 02 03"}, {23, "TAB:"}, {33, "DB"}, {43, "1,2,3,4,5,6,7"}}) +
                          "      0013 04 05 06\n      0016 07\n");
  EXPECT_EQ(as.LineCount, 15);
}

TEST_F(ListFileTest, NumberColumnOfBlankExpandedCommentAndSequencedLines) {
  as.LineNumber = 3, as.BlankLine = true;
  ListLine(as);
  as.BlankLine = false, as.FromSourceFile = false, as.InMacroExpansion = true, as.LineValue = 0x20, as.CodeLength = 1;
  List(" NOP\n", 0, 1, 4, 4);  // MEX off: not listed
  as.opt.MEX.bits = 1;
  List(" NOP\n", 0, 1, 4, 4);
  as.FromSourceFile = true, as.InMacroExpansion = false, as.CodeLength = 0, as.ShowLineValue = false;
  as.CommentLine = true;
  List("   ; note  \n", 0, 0, 0, 0);
  as.opt.SEQ.bits = 1, as.SequenceNumber = 120;
  List("   ; note  \n", 0, 0, 0, 0);
  EXPECT_EQ(Listed(), "    3\n" + Row({{0, "      0020 00"}, {33, "NOP"}}) + Row({{0, "    3"}, {23, "   ; note"}}) +
                          Row({{0, "00120"}, {23, "   ; note"}}));
}

TEST_F(ListFileTest, PageHeadersAndTheWidthWarning) {
  as.opt.PAGE.bits = 1, as.NewPageWanted = true, as.RunTime = "Mon Jan  1 12:00:00 2024";
  as.ExplicitModuleName = "DEMO", as.TitleText = "Tests", as.BlankLine = true, as.LineNumber = 5;
  as.ListLineLimit = 64, as.WidthChanged = true;
  ListLine(as);
  as.ListIsConsole = true, as.ListLineLimit = 63;
  NewPage(as);
  ListLine(as);
  as.opt.PAGE.bits = 0, as.LineCount = as.PageLength;
  ListLine(as);
  auto header = [](const char* page) {
    return std::string("PAGE  ") + page + "  T.ASM" + std::string(35, ' ') + " Mon Jan  1 12:00:00 2024\n" +
           std::string(11, ' ') + "DEMO" + std::string(14, ' ') + "Tests\n\n";
  };
  EXPECT_EQ(Listed(), "\f" + header("001") + "    5\n\n" + header("002") +
                          "\nT.ASM(5): Warning: Page width too small to accomodate fields\n    5\n    5\n");
  EXPECT_EQ(as.WarningCount, 1);
  EXPECT_EQ(as.PageNumber, 3);
  EXPECT_EQ(as.LineCount, 4);
}

// The header's names are padded to their columns but never cut; the run
// time is cut to its 24 characters; the page number widens past 3 digits.
TEST_F(ListFileTest, PageHeaderWithNamesWiderThanTheirColumns) {
  as.opt.PAGE.bits = 1, as.PageNumber = 1233;
  as.CurrentFileName = std::string(45, 'F'), as.RunTime = "Mon Jan  1 12:00:00 2024 and more";
  as.ExplicitModuleName = std::string(20, 'M'), as.TitleText = "T";
  NewPage(as);
  EXPECT_EQ(Listed(), "\fPAGE  1234  " + std::string(45, 'F') + " Mon Jan  1 12:00:00 2024\n" + std::string(11, ' ') +
                          std::string(20, 'M') + "   T\n\n");
}

// "%05d" puts the sign before the zeros.
TEST_F(ListFileTest, NegativeSequenceNumberKeepsItsSignInFiveColumns) {
  as.opt.SEQ.bits = 1, as.SequenceNumber = -12, as.BlankLine = true;
  ListLine(as);
  EXPECT_EQ(Listed(), "-0012\n");
}

// Rows that cross the end of the run's list buffer arrive whole and in order.
TEST_F(ListFileTest, RowsAcrossTheListBufferEndArriveWhole) {
  as.LineNumber = 1, as.LineValue = 0x1234, as.CodeLength = 1;
  const std::string row = Row({{0, "    1 1234 00"}, {33, "NOP"}, {61, "; c"}});
  const size_t rows = 2 * ListBuffer::kCapacity / row.size() + 1;
  for (size_t n = 0; n < rows; ++n) List(" NOP ; c\n", 0, 1, 5, 5);
  std::string expected;
  for (size_t n = 0; n < rows; ++n) expected += row;
  EXPECT_EQ(Listed(), expected);
}

// A line too long to reserve its row's room in the buffer is listed in full.
TEST_F(ListFileTest, LineLongerThanTheListBufferIsListedWhole) {
  const std::string label(ListBuffer::kCapacity, 'L');
  as.LineNumber = 1, as.ShowLineValue = false;
  List(label + " NOP\n", 0, static_cast<int>(label.size()) + 1, static_cast<int>(label.size()) + 4,
       static_cast<int>(label.size()) + 4);
  EXPECT_EQ(Listed(), Row({{0, "    1"}, {23, label}, {23 + label.size() + 1, "NOP"}}));
}

TEST_F(ListFileTest, LineLimitCarriesTheCommentIntoFollowingRows) {
  as.ListLineLimit = 40, as.LabelFieldWidth = 2, as.OpcodeFieldWidth = 3, as.OperandFieldWidth = 4;
  as.LineNumber = 1, as.CodeLength = 1;
  List(" NOP ; abcdefghijklmnop\n", 0, 1, 5, 5);
  EXPECT_EQ(Listed(), Row({{0, "    1 0000 00"}, {25, "NOP"}, {32, "; abcdef"}}) + Row({{32, "ghijklmn"}}) +
                          Row({{32, "op"}}));
  EXPECT_EQ(as.LineCount, 13);
}

void Add(Assembler& as, const char* name, int32_t type, int32_t value, uint8_t flags = 0) {
  SymbolEntry entry;
  entry.type = type, entry.value = value, entry.flags = flags;
  as.Symbols.Insert(name, entry, false);
}

TEST_F(ListFileTest, SymbolTableSectionsRowsAndBanks) {
  Add(as, "MAIN", T_CODE, 0x100), Add(as, "big", T_NUMBER, 0x12345), Add(as, "COUNT", T_NUMBER, 5);
  Add(as, "ACC", T_DATA, 0xE0, kSymPredefined), Add(as, "FLAG", T_BIT, 0x20), Add(as, "PTR", T_REGEQU, 3);
  Add(as, "M1", T_MACRO, 0), Add(as, "LOOP", T_CODE, 0x12);
  as.PageWidth = 40, as.LineCount = 63;  // two entries of 14 columns a row, and no room left on the page
  as.RegisterBankUsed[0] = as.RegisterBankUsed[2] = true;
  ListSymbolTable(as);
  EXPECT_EQ(Listed(),
            "\nSymbol table:\n\nCOUNT   0005  LOOP    0012  \nMAIN    0100  big     12345  \n"
            "\nBit addresses:\n\nFLAG    0020  \n\nRegister variables:\n\nPTR       R1  "
            "\n6 symbols.\n\nRegister banks used: Bank 0, Bank 2\n");
  EXPECT_EQ(as.PageNumber, 1);
  EXPECT_EQ(as.LineCount, 17);
}

TEST_F(ListFileTest, NameWiderThanThePageStillGetsOneEntryARow) {
  Add(as, "A_NAME_OF_TWENTY_CHR", T_NUMBER, 1), Add(as, "B", T_NUMBER, 2);
  as.PageWidth = 20;
  ListSymbolTable(as);
  EXPECT_EQ(Listed(), "\nSymbol table:\n\nA_NAME_OF_TWENTY_CHR   0001  \nB" + std::string(22, ' ') +
                          "0002  \n\nBit addresses:\n\n\n2 symbols.\n\nRegister banks used:\n");
}

TEST_F(ListFileTest, FieldsAndPageWidthDirectives) {
  EXPECT_EQ(Run(FieldsDirective, ",12"), 12);
  EXPECT_FALSE(as.ShowLineValue);
  Run(FieldsDirective, "4 , , 6 ; widths");
  EXPECT_EQ(std::vector<int32_t>({as.LabelFieldWidth, as.OpcodeFieldWidth, as.OperandFieldWidth}),
            std::vector<int32_t>({4, 12, 6}));
  EXPECT_EQ(Run(PageWidthDirective, "63"), 12);
  EXPECT_EQ(std::make_pair(as.ListLineLimit, as.LineValue), std::make_pair(63, 63));
  EXPECT_TRUE(as.WidthChanged);
  as.WidthChanged = false;
  Run(PageWidthDirective, "63");
  EXPECT_FALSE(as.WidthChanged);
}

TEST_F(ListFileTest, FieldsRefusesWidthsOutOfRangeAndChangesNothing) {
  EXPECT_EQ(Run(FieldsDirective, "4,256"), 0);
  as.LineHasError = false;
  EXPECT_EQ(Run(FieldsDirective, "-1"), 0);
  EXPECT_EQ(as.ErrorCount, 2);
  EXPECT_EQ(std::vector<int32_t>({as.LabelFieldWidth, as.OpcodeFieldWidth, as.OperandFieldWidth}),
            std::vector<int32_t>({10, 10, 18}));
  as.LineHasError = false;
  EXPECT_EQ(Run(FieldsDirective, "0,,255"), 12);
  EXPECT_EQ(std::vector<int32_t>({as.LabelFieldWidth, as.OpcodeFieldWidth, as.OperandFieldWidth}),
            std::vector<int32_t>({0, 10, 255}));
}

// Padding wider than the run buffer of the list text is written in full.
TEST_F(ListFileTest, PaddingOfAnyWidthIsWrittenWhole) {
  as.LabelFieldWidth = 100000, as.LineNumber = 1, as.ShowLineValue = false;
  List(" NOP\n", 0, 1, 4, 4);
  EXPECT_EQ(Listed(), Row({{0, "    1"}, {100023, "NOP"}}));
}

}  // namespace
