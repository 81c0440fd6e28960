// The instruction encoder, driven through both passes by a small line loop of
// its own: labels defined in the first pass, lengths kept in the size file.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/instruction_stream.h"
#include "driver/entry.h"
#include "symbols/symbols.h"
#include "isa/encoder.h"
#include "isa/predefined.h"

namespace ta51 {
namespace {

struct Encoded {
  std::string bytes;  // hex of CodeBuffer, or empty after an error
  std::string error;  // text of the first error of the line
  OperandSlot slot1, slot2;
};

class EncoderTest : public ::testing::Test {
 protected:
  Assembler as{Console{std::tmpfile(), std::tmpfile(), nullptr}};

  void SetUp() override {
    as.ListStream = std::tmpfile();
    as.opt.PredefinedSymbolsEnabled.bits = 1;
    EnterAllPredefinedSymbols(as, false);
    as.CurrentSegment = AddSegment(T_CODE, kKindAbsolute, 0);
  }

  SegmentEntry* AddSegment(int32_t type, int32_t kind, int32_t number) {
    SegmentEntry& segment = as.Segments.entries.emplace_back();
    segment.type = type;
    segment.kind = kind;
    segment.number = number;
    return &segment;
  }

  void Define(const char* name, int32_t value, int32_t type, SegmentEntry* segment = nullptr,
              int32_t relocation = REL_NULL) {
    SymbolDefinition definition;
    definition.value = value;
    definition.type = type;
    definition.segment = segment;
    definition.relocation = relocation;
    DefineSymbol(as, name, definition);
  }

  // The message text of the last report on the console.
  std::string LastError() {
    FILE* out = as.console.out;
    std::fflush(out);
    long end = std::ftell(out);
    std::string text(static_cast<size_t>(end), '\0');
    std::rewind(out);
    if (std::fread(text.data(), 1, text.size(), out) != text.size()) return "?";
    std::fseek(out, 0, SEEK_END);
    size_t at = text.rfind("Error: ");
    if (at == std::string::npos) return "";
    return text.substr(at + 7, text.find('\n', at) - at - 7);
  }

  // One statement in the current pass; "LABEL: " in front defines a label.
  Encoded Statement(const std::string& line) {
    as.LineHasError = as.ExprUndefined = as.NeedsSizeByte = false;
    as.CodeLength = 0;
    as.OperandSlot1.Clear();
    as.OperandSlot2.Clear();
    std::string body = line, label;
    size_t colon = line.find(": ");
    if (colon != std::string::npos && line[0] != ' ') {
      label = line.substr(0, colon);
      body = line.substr(colon + 2);
    }
    as.Line.text = " " + body + "\n";
    size_t wordEnd = as.Line.text.find_first_of(" \n", 1);
    std::string word = as.Line.text.substr(1, wordEnd - 1);
    for (char& c : word) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    as.Line.offset = static_cast<int32_t>(wordEnd);
    Encoded result;
    for (int position = 0; position < 45; ++position) {
      if (word != kMnemonics[position].word) continue;
      EncodeInstruction(as, kMnemonics[position].base, position);
      break;
    }
    if (as.LineHasError) {
      result.error = LastError();
      return result;
    }
    // As in the line loop: the label is defined after its statement.
    if (!label.empty() && !as.SecondPass)
      Define(label.c_str(), static_cast<int32_t>(as.CurrentSegment->location), as.CurrentSegment->type,
             as.CurrentSegment);
    char hex[3];
    for (int i = 0; i < as.CodeLength; ++i) {
      std::snprintf(hex, sizeof hex, "%02X", as.CodeBuffer[i]);
      result.bytes += hex;
    }
    result.slot1 = as.OperandSlot1;
    result.slot2 = as.OperandSlot2;
    as.CurrentSegment->location += static_cast<uint32_t>(as.CodeLength);
    return result;
  }

  // Both passes over the lines from `origin`; the second pass's results, or
  // the first pass's when it reported an error.
  std::vector<Encoded> Assemble(const std::vector<std::string>& lines, uint32_t origin = 0) {
    std::vector<Encoded> results;
    if (as.SizeFile != nullptr) std::fclose(as.SizeFile);
    as.SizeFile = std::tmpfile();
    as.Reuse.StartPass();
    for (as.SecondPass = 0; as.SecondPass < 2; ++as.SecondPass) {
      RewindInstructionStream(as);
      as.Reuse.StartPass();
      as.CurrentSegment->location = origin;
      results.clear();
      for (const std::string& line : lines) {
        results.push_back(Statement(line));
        if (!as.SecondPass && as.NeedsSizeByte && !as.LineHasError) WriteInstructionRecord(as);
      }
      if (as.ErrorCount > 0) break;
    }
    return results;
  }

  Encoded One(const std::string& line, uint32_t origin = 0) { return Assemble({line}, origin).back(); }
};

TEST_F(EncoderTest, FormsOfTheEncodingTable) {
  const std::map<std::string, std::string> cases = {
      {"MOV ACC,A", "F5E0"},       {"MOV 30H,31H", "853130"},   {"MOV 30H,#1", "753001"},
      {"MOV DPTR,#1234H", "901234"}, {"CJNE A,#5,$", "B405FD"},  {"DJNZ R3,$", "DBFE"},
      {"DJNZ 30H,$", "D530FD"},    {"JB ACC.0,$", "20E0FD"},    {"ADD A,#1", "2401"},
      {"ADD A,R3", "2B"},          {"ADD A,@R1", "27"},         {"ADD A,30H", "2530"},
      {"ANL C,/ACC.1", "B0E1"},    {"ORL C,ACC.1", "72E1"},     {"MOV ACC.1,C", "92E1"},
      {"MOV C,ACC.1", "A2E1"},     {"CLR A", "E4"},             {"CPL A", "F4"},
      {"MUL AB;comment", "A4"},    {"MOVC A,@A+PC", "83"},      {"movc a, @a + dptr", "93"},
      {"JMP @A+DPTR", "73"},       {"SETB TR0", "D28C"},        {"setb tr0", "D28C"},
      {"MOV A,P1", "E590"},        {"CLR EA", "C2AF"},          {"MOV A,#255", "74FF"},
      {"MOV A,#-255", "7401"},     {"LJMP 65535", "02FFFF"},    {"mov a , r7", "EF"},
      {"MOV 30H, R2", "8A30"},     {"MOV 30H,@R1", "8730"},     {"MOV @R1,30H", "A730"},
      {"MOV R4,#0", "7C00"},       {"XCH A,@R0", "C6"},         {"XCHD A,@R1", "D7"},
      {"MOVX @DPTR , A", "F0"},    {"MOVX @R1,A", "F3"},        {"MOVX A,@R0", "E2"},
      {"INC DPTR", "A3"},          {"DEC @R1", "17"},           {"INC A", "04"},
      {"CJNE @R1,#7,$", "B707FD"}, {"CJNE R7,#7,$", "BF07FD"},  {"ORL 30H,#0FH", "43300F"},
      {"XRL 30H,A", "6230"},       {"SETB C", "D3"},            {"PUSH B", "C0F0"},
  };
  for (const auto& [statement, bytes] : cases) {
    Encoded result = One(statement);
    EXPECT_EQ(result.bytes, bytes) << statement << ": " << result.error;
    as.ErrorCount = 0;
  }
}

TEST_F(EncoderTest, ReportsOfTheOperandReaders) {
  Define("LABEL", 0x40, T_CODE, as.CurrentSegment);
  Define("PTR", 4, T_REGEQU);
  Define("SLOT", 0x10, T_DATA);
  const std::map<std::string, std::string> cases = {
      {"RL B", "A expected"},                 {"ADD R3,A", "A expected"},
      {"XCH A,#1", "Syntax error"},           {"XCHD A,R1", "Syntax error"},
      {"MOV A,ACC", "Invalid direct address"}, {"MOV A,@R2", "Bad register"},
      {"MOV A,@PTR", "Bad register"},         {"MOV A,@30H", "Register expected"},
      {"ORL 30H,B", "'#' expected"},          {"ANL C ACC.1", "Missing comma"},
      {"CJNE R1 #1,$", "Missing comma"},      {"CJNE 30H,#1,$", "Register expected"},
      {"CJNE R1,1,$", "'#' expected"},        {"SETB A", "Syntax error"},
      {"DIV A", "Syntax error"},              {"DJNZ R1 $", "Missing comma"},
      {"MOVC A,@A+X", "Syntax error"},        {"MOVC A,A+DPTR", "@ expected"},
      {"MOVC A,@B+DPTR", "A expected"},       {"MOVC A,@A DPTR", "+ expected"},
      {"MOVC B,@A+DPTR", "Syntax error"},     {"MOVX @DPTR,B", "A expected"},
      {"MOVX 30H,A", "Syntax error"},         {"MOVX A,R1", "@ expected"},
      {"JMP @A+PC", "DPTR expected"},         {"JMP @B+DPTR", "A expected"},
      {"JMP @A DPTR", "+ expected"},          {"MOV DPTR,1234H", "'#' expected"},
      {"MOV R1 A", "Missing comma"},          {"MOV 20H.1 B,C", "Missing comma"},
      {"PUSH 300", "Expression evaluates to value greater than 8 bits"},
      {"MOV A,#256", "Expression evaluates to value greater than 8 bits"},
      {"MOV A,#-256", "Expression evaluates to value greater than 8 bits"},
      {"LJMP 65536", "Expression evaluates to value greater than 16 bits"},
      {"PUSH LABEL", "Data address expected"}, {"LJMP P1", "Code address expected"},
      {"SJMP SLOT", "Code address expected"},   {"SETB 30H.0", "Bit address expected"},
      {"SETB 20H.8", "Bit address expected"}, {"SETB 256", "Bit address expected"},
      {"SETB P1", "Bit address expected"},    {"SJMP $+200", "Out of range"},
      {"ACALL 800H", "Address not within 2K byte block"},
  };
  for (const auto& [statement, message] : cases) {
    EXPECT_EQ(One(statement).error, message) << statement;
    as.ErrorCount = 0;
  }
  as.CurrentSegment = AddSegment(T_DATA, kKindAbsolute, 1);
  EXPECT_EQ(One("NOP").error, "Assembler code not allowed in current segment type");
}

TEST_F(EncoderTest, BitAddresses) {
  EXPECT_EQ(One("SETB 20H.3").bytes, "D203");
  EXPECT_EQ(One("SETB 21H.0").bytes, "D208");
  EXPECT_EQ(One("SETB ACC.3").bytes, "D2E3");
  EXPECT_EQ(One("SETB 7FH").bytes, "D27F");
  // A bit symbol takes no bit number: the dot is left for the end check.
  EXPECT_EQ(One("SETB TR0.1").bytes, "D28C");
  EXPECT_EQ(as.Line.Peek(), '.');

  SegmentEntry* data = AddSegment(T_DATA, kKindUnit, 3);
  Define("FLAGS", 1, T_DATA, data);
  Encoded relocatable = One("SETB FLAGS.2");
  EXPECT_EQ(relocatable.bytes, "D200");
  EXPECT_EQ(relocatable.slot1.text, "(((R3+1))-20)*8+2");
  EXPECT_EQ(relocatable.slot1.FixupOffset, 1);
  EXPECT_EQ(relocatable.slot1.FixupSize, 1);

  // A relocatable operand that is no bit is refused in the first pass already.
  as.CurrentSegment = AddSegment(T_CODE, kKindUnit, 4);
  std::vector<Encoded> lines = Assemble({"HERE: NOP", "SETB HERE"});
  EXPECT_EQ(as.SecondPass, 0);
  EXPECT_EQ(lines[1].error, "Bit address expected");
}

TEST_F(EncoderTest, RelativeTargets) {
  SegmentEntry* code = AddSegment(T_CODE, kKindUnit, 3);
  as.CurrentSegment = code;
  Define("EXT", 1, T_CODE, nullptr, REL_XREF);
  std::vector<Encoded> lines = Assemble({"SJMP $", "LABEL: NOP", "NOP", "NOP", "NOP", "NOP", "NOP", "NOP",
                                         "NOP", "NOP", "NOP", "NOP", "NOP", "NOP", "NOP", "SJMP EXT",
                                         "SJMP (LABEL)", "CJNE A,#1,EXT", "DJNZ R0,LABEL"});
  EXPECT_EQ(lines[0].bytes, "80FE");
  EXPECT_TRUE(lines[0].slot1.text.empty());
  EXPECT_EQ(lines[15].bytes, "8000");
  EXPECT_EQ(lines[15].slot1.text, "X1-(R3+12)");
  EXPECT_EQ(lines[15].slot1.FixupOffset, 1);
  EXPECT_EQ(lines[15].slot1.FixupSize, 1);
  EXPECT_EQ(lines[16].slot1.text, "((R3+2))-(R3+14)");
  EXPECT_EQ(lines[17].bytes, "B40100");
  EXPECT_EQ(lines[17].slot2.text, "X1-(R3+17)");
  EXPECT_EQ(lines[17].slot2.FixupOffset, 2);
  // A lone label of this segment needs no fixup.
  EXPECT_EQ(lines[18].bytes, "D8E9");
  EXPECT_TRUE(lines[18].slot1.text.empty());

  as.CurrentSegment = AddSegment(T_CODE, kKindAbsolute, 5);
  EXPECT_EQ(One("SJMP EXT", 0x100).slot1.text, "X1-102");
  // Too far back is known, and reported, in the first pass.
  lines = Assemble({"BACK: NOP", "MOV DPTR,#0", "MOV DPTR,#0", "CJNE A,#1,BACK"}, 0x200);
  EXPECT_EQ(lines.back().bytes, "B401F6");
  std::vector<std::string> far = {"BACK: NOP"};
  far.insert(far.end(), 43, "MOV DPTR,#0");
  far.push_back("SJMP BACK");
  lines = Assemble(far);
  EXPECT_EQ(as.SecondPass, 0);
  EXPECT_EQ(lines.back().error, "Out of range");
}

TEST_F(EncoderTest, JumpAndCallSizes) {
  std::vector<std::string> program = {"BACK: NOP"};
  program.insert(program.end(), 33, "MOV DPTR,#0");  // 100 bytes on from BACK
  program.insert(program.end(), {"JMP BACK", "CALL BACK", "JMP FWD", "CALL FWD", "FWD: NOP"});
  std::vector<Encoded> lines = Assemble(program, 0x700);
  EXPECT_EQ(lines[34].bytes, "809A");    // SJMP before AJMP
  EXPECT_EQ(lines[35].bytes, "F100");    // ACALL: CALL never becomes SJMP
  EXPECT_EQ(lines[36].bytes, "02076E");  // forward: LJMP
  EXPECT_EQ(lines[37].bytes, "12076E");
  // Across a 2K boundary, but within reach of SJMP.
  lines = Assemble({"EDGE: NOP", "JMP EDGE", "CALL EDGE"}, 0x7FE);
  EXPECT_EQ(lines[1].bytes, "80FD");
  EXPECT_EQ(lines[2].bytes, "1207FE");

  as.opt.InPageOption.bits = 1;
  lines = Assemble({"JMP NEAR", "CALL NEAR", "NEAR: NOP"});
  EXPECT_EQ(lines[0].bytes, "8002");
  EXPECT_EQ(lines[1].bytes, "1104");
  as.opt.InPageOption.bits = 0;

  // The first pass lets ACALL go out of its block; the second reports it.
  lines = Assemble({"ACALL OVER", "MOV DPTR,#0", "OVER: NOP"}, 0x7FC);
  EXPECT_EQ(as.SecondPass, 1);
  EXPECT_EQ(lines[0].error, "Address not within 2K byte block");
}

TEST_F(EncoderTest, RelocatableJumpsAndCallTargets) {
  SegmentEntry* code = AddSegment(T_CODE, kKindUnit, 3);
  as.CurrentSegment = code;
  std::vector<Encoded> lines = Assemble({"NOP", "NOP", "NOP", "NOP", "LABEL: JMP LABEL", "CALL LABEL",
                                         "LCALL LABEL"});
  EXPECT_EQ(lines[4].bytes, "020000");
  EXPECT_EQ(lines[4].slot1.text, "(R3+4)");
  EXPECT_EQ(lines[4].slot1.FixupOffset, 1);
  EXPECT_EQ(lines[4].slot1.FixupSize, 2);
  EXPECT_EQ(lines[5].bytes.substr(0, 2), "12");
  EXPECT_EQ(code->CallTargetList, std::vector<std::string>{"(R3+4)"});

  code->CallTargetList.clear();
  as.opt.InPageOption.bits = 1;
  lines = Assemble({"NOP", "NOP", "NOP", "NOP", "PAGED: CALL PAGED", "AJMP PAGED"});
  const char* call =
      "((((HIGH ((R3+4))) SHL &13) AND FFFF) OR (LOW ((R3+4))) OR 1100 OR ((((HIGH ((R3+4))) SHL &13) AND "
      "FFFF0000) XOR (((HIGH (R3+4)) SHL &13) AND FFFF0000)))";
  EXPECT_EQ(lines[4].slot1.text, call);
  EXPECT_EQ(lines[4].slot1.FixupOffset, 20);
  EXPECT_EQ(lines[4].slot1.FixupSize, 2);
  EXPECT_EQ(lines[5].slot1.text,
            "((((HIGH ((R3+4))) SHL &13) AND FFFF) OR (LOW ((R3+4))) OR 0100 OR ((((HIGH ((R3+4))) SHL &13) AND "
            "FFFF0000) XOR (((HIGH (R3+6)) SHL &13) AND FFFF0000)))");
  EXPECT_EQ(code->CallTargetList, std::vector<std::string>{"(R3+4)"});

  as.CurrentSegment = AddSegment(T_CODE, kKindAbsolute, 5);
  Define("EXT", 2, T_CODE, nullptr, REL_XREF);
  EXPECT_EQ(One("ACALL EXT", 0x123).slot1.text,
            "((((HIGH (X2)) SHL &13) AND FFFF) OR (LOW (X2)) OR 1100 OR ((((HIGH (X2)) SHL &13) AND FFFF0000) "
            "XOR (((HIGH (123)) SHL &13) AND FFFF0000)))");
}

TEST_F(EncoderTest, PhaseErrorWhenTheSizeFileRunsShort) {
  as.SecondPass = 1;
  as.SizeFile = std::tmpfile();
  EXPECT_THROW(Statement("JMP 0"), RunTerminated);
  EXPECT_EQ(LastError(), "Phase error");
}

TEST_F(EncoderTest, MoveBetweenDirectAddresses) {
  SegmentEntry* data = AddSegment(T_DATA, kKindUnit, 3);
  Define("VAR", 5, T_DATA, data);
  // The source goes to byte 2; a relocatable destination makes it a field too.
  Encoded line = One("MOV VAR,31H");
  EXPECT_EQ(line.bytes, "853100");
  EXPECT_EQ(line.slot1.text, "31");
  EXPECT_EQ(line.slot1.FixupOffset, 1);
  EXPECT_EQ(line.slot2.text, "(R3+5)");
  line = One("MOV 30H,VAR");
  EXPECT_EQ(line.bytes, "850030");
  EXPECT_EQ(line.slot1.text, "(R3+5)");
  EXPECT_TRUE(line.slot2.text.empty());
}

TEST_F(EncoderTest, RegisterAliases) {
  Define("COUNT", 7, T_REGEQU);
  Define("ACCU", 1, T_REGSET);
  EXPECT_EQ(One("DJNZ COUNT,$").bytes, "DDFE");
  EXPECT_EQ(One("MOV COUNT,A").bytes, "FD");
  EXPECT_EQ(One("MOV ACCU,#1").bytes, "7401");
  EXPECT_EQ(One("RL ACCU").bytes, "23");

  as.Line.text = " R5\tX\n";
  as.Line.offset = 1;
  EXPECT_EQ(RegisterOperand(as, " \t\n"), 7);
  EXPECT_EQ(as.Line.offset, 3);
  as.Line.text = " R5X\n";
  as.Line.offset = 1;
  EXPECT_EQ(RegisterOperand(as, " \t\n"), -1);
  EXPECT_EQ(as.Line.offset, 1);
}

// ---- End to end: the assembler on a program of every opcode ---------------

const std::filesystem::path kCaseDir =
    std::filesystem::path(__FILE__).parent_path().parent_path() / "golden" / "cases" / "all_opcodes";

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Runs the assembler on the case's source in a fresh directory and returns
// the bytes of each LR record of the module.
std::vector<std::string> AssembleAllOpcodes(const std::filesystem::path& dir) {
  std::filesystem::copy_file(kCaseDir / "source.asm", dir / "source.asm");
  std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(dir);
  FILE* out = std::tmpfile();
  int status = RunAssembler({"source.asm;"}, Console{out, out, nullptr});
  std::fclose(out);
  std::filesystem::current_path(previous);
  EXPECT_EQ(status, 0);
  std::vector<std::string> records;
  std::istringstream object(ReadFile(dir / "source.OBJ"));
  for (std::string line; std::getline(object, line);)
    if (line.rfind("LR", 0) == 0) records.push_back(line.substr(2, line.size() - 4));  // ".\r" behind
  return records;
}

std::filesystem::path FreshDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "ta51opXXXXXX").string();
  return mkdtemp(pattern.data());
}

TEST(AllOpcodes, EveryRecordMatchesTheOpcodeMap) {
  std::filesystem::path dir = FreshDirectory();
  std::vector<std::string> records = AssembleAllOpcodes(dir);
  std::istringstream expected(ReadFile(kCaseDir / "expected_bytes.txt"));
  size_t index = 0;
  for (std::string address, bytes; expected >> address >> bytes; ++index) {
    ASSERT_LT(index, records.size());
    EXPECT_EQ(records[index], bytes) << "at " << address;
  }
  EXPECT_EQ(index, 255u);
  EXPECT_EQ(records.size(), 255u);
  std::filesystem::remove_all(dir);
}

TEST(AllOpcodes, SameBytesAsAs31) {
  if (std::system("command -v as31 >/dev/null 2>&1") != 0) GTEST_SKIP() << "as31 is not installed";
  std::filesystem::path dir = FreshDirectory();
  std::string ours;
  for (const std::string& record : AssembleAllOpcodes(dir)) ours += record;
  // as31 writes the location counter as `*`.
  std::string source = ReadFile(kCaseDir / "source.asm");
  for (char& c : source)
    if (c == '$') c = '*';
  std::ofstream(dir / "x.asm") << source;
  std::string command = "cd '" + dir.string() + "' && as31 -Fbyte x.asm >/dev/null 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0);
  std::string theirs;
  std::istringstream bytes(ReadFile(dir / "x.byte"));
  for (std::string address, byte; bytes >> address >> byte;) theirs += byte;
  EXPECT_EQ(ours, theirs);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace ta51
