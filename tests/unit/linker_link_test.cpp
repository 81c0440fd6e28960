// What tl51 makes of modules that link: where segments go, which library
// modules come in, what the fields and publics come to, and the outputs.
// Every expected address and byte is worked out from the rules by hand.
#include "linker/evaluate.h"
#include "linker/placement_rules.h"
#include "linker_test_helpers.h"

namespace ta51::testing {
namespace {

class LinkResultTest : public LinkTest {
 protected:
  // Links the modules (name, text) and returns the publics of the map.
  std::map<std::string, uint32_t> Publics(const std::vector<std::pair<std::string, std::string>>& modules,
                                          std::vector<std::string> options = {}) {
    std::vector<std::string> arguments = {"-o", "out.hex"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    for (const auto& [name, text] : modules) {
      Write(name, text);
      arguments.push_back(name);
    }
    RunResult link = Link(arguments);
    EXPECT_EQ(link.status, 0) << link.err;
    return MapPublics("out.map");
  }
};

// Two modules with the same PROG are one segment, A's part first; COMMON
// parts overlay. PAGE goes first (aligned before plain), at 0.
TEST_F(LinkResultTest, JoinedAndCommonSegments) {
  std::map<std::string, uint32_t> publics = Publics({
      {"a.OBJ", Obj("A", {"ST0,C,04PROG", "ASS0,3", "ST1,C,M,03COM", "ASS1,2", "ST2,C,02PG", "SA2,100", "ASS2,1",
                          "NI0,02PA", "ASI0,R0+1", "NI1,02CA", "ASI1,R1+0", "NI2,02PG", "ASI2,R2+0"})},
      {"b.OBJ", Obj("B", {"ST0,C,04PROG", "ASS0,2", "ST1,C,M,03COM", "ASS1,5", "NI0,02PB", "ASI0,R0+0", "NI1,02CB",
                          "ASI1,R1+4"})},
  });
  EXPECT_EQ(publics["PG"], 0x0000u);
  EXPECT_EQ(publics["PA"], 0x0002u);  // PROG at 1: A's part 1-3
  EXPECT_EQ(publics["PB"], 0x0004u);  // B's part 4-5
  EXPECT_EQ(publics["CA"], 0x0006u);  // COM at 6, size 5
  EXPECT_EQ(publics["CB"], 0x000Au);
  EXPECT_NE(Read("out.map").find("  CODE   0006     000A     0005     COM                  A, B\n"), std::string::npos);
}

// Windows first (largest first), then alignment, then the rest in order,
// POSTPONE last, HIGH from the top; DATA, IDATA and BIT share the RAM.
TEST_F(LinkResultTest, PlacementOrderAndSharedRam) {
  std::map<std::string, uint32_t> publics = Publics({{"a.OBJ", Obj("A", {
      "ST0,C,A", "ASS0,E8", "ASL0,8",          // code 0008-00EF taken
      "ST1,C,H,02HI", "ASS1,10",               // highest: FFF0
      "ST2,C,P,02PO", "ASS2,4",                // after PL: 0004
      "ST3,C,02PL", "ASS3,4",                  // 0000
      "ST4,C,02IP", "SA4,0,100", "ASS4,20",    // F0-10F would cross a page: 0100
      "ST5,D,Z,A", "ASS5,1", "ASL5,20",        // DATA 20
      "ST6,D,Z,02BA", "SA6,20,10", "ASS6,2",   // bit-addressable: 21-22
      "ST7,B,Z,02BT", "ASS7,9",                // bits of bytes 20-22 taken: 18-20
      "ST8,D,Z,02DP", "ASS8,3",                // 08-0A
      "ST9,I,Z,02IS", "ASS9,70",               // 0B-1F too small: 25-94
      "STA,D,Z,A,M,0FRegister bank 1", "ASSA,8", "ASLA,8",  // bank 1 takes 08-0F
      "NI0,02HI", "ASI0,R1+0", "NI1,02PO", "ASI1,R2+0", "NI2,02PL", "ASI2,R3+0", "NI3,02IP", "ASI3,R4+0",
      "NI4,02BA", "ASI4,R6+0", "NI5,02BT", "ASI5,R7+0", "NI6,02DP", "ASI6,R8+0", "NI7,02IS", "ASI7,R9+0",
      "NI8,02AB", "ASI8,R0+100"})},
      {"b.OBJ", Obj("B", {"ST0,D,Z,A,M,0FRegister bank 1", "ASS0,8", "ASL0,8"})}});  // the same bank: no clash
  EXPECT_EQ(publics["HI"], 0xFFF0u);
  EXPECT_EQ(publics["PO"], 0x0004u);
  EXPECT_EQ(publics["PL"], 0x0000u);
  EXPECT_EQ(publics["IP"], 0x0100u);
  EXPECT_EQ(publics["BA"], 0x21u);
  EXPECT_EQ(publics["BT"], 0x18u);
  EXPECT_EQ(publics["DP"], 0x10u);  // bank 1 holds 08-0F
  EXPECT_EQ(publics["IS"], 0x25u);
  EXPECT_EQ(publics["AB"], 0x100u);  // R of an absolute segment is 0
}

// A library module comes in when a linked module needs one of its publics,
// also through another library module; the others stay out. A library
// named by INCLUDELIB is found through -L; a module given directly is
// always linked.
TEST_F(LinkResultTest, LibrariesOnDemand) {
  std::filesystem::create_directory("libs");
  Write("libs/SECOND.LIB", Obj("L3", {"NI0,02F3", "ASI0,33"}));
  Write("first.LIB", Obj("L1", {"NX1,02F2", "NI0,02F1", "ASI0,X1+1", "LI0ASECOND.LIB"}) +
                         Obj("L2", {"NI0,02F2", "ASI0,20", "NX1,02F3"}) + Obj("L4", {"NI0,02F4", "ASI0,44"}));
  std::map<std::string, uint32_t> publics = Publics(
      {{"first.LIB", Read("first.LIB")}, {"m.OBJ", Obj("M", {"NX1,02F1"})}, {"n.OBJ", Obj("N", {})}}, {"-L", "libs"});
  EXPECT_EQ(publics["F1"], 0x21u);
  EXPECT_EQ(publics["F2"], 0x20u);
  EXPECT_EQ(publics["F3"], 0x33u);
  EXPECT_EQ(publics.count("F4"), 0u);
  std::string map = Read("out.map");
  size_t modules = map.find("Modules, in link order\n");
  EXPECT_EQ(map.substr(modules, map.find("\n\n", modules) - modules),
            "Modules, in link order\n"
            "  M                    m.OBJ\n"
            "  N                    n.OBJ\n"
            "  L1                   first.LIB (library)\n"
            "  L2                   first.LIB (library)\n"
            "  L3                   libs/SECOND.LIB (library)");
}

TEST_F(LinkResultTest, HexBinaryMapAndSummary) {
  std::string bytes;
  for (int i = 0; i < 18; ++i) bytes += "LR" + std::string(1, "0123456789ABCDEF"[i >> 4]) + "0123456789ABCDEF"[i & 15] + ".";
  bytes.pop_back();
  std::vector<std::string> records = {"ST0,C,A", "ASS0,12", "ASL0,0", "ST1,C,A", "ASS1,1", "ASL1,100", "SB0"};
  for (size_t at = 0; at < bytes.size(); at += 5) records.push_back(bytes.substr(at, 4));
  records.insert(records.end(), {"SB1", "LR(5*22,1,I)"});
  Write("p.OBJ", Obj("P", records));
  RunResult link = Link({"p.OBJ"});
  ASSERT_EQ(link.status, 0) << link.err;
  EXPECT_EQ(link.out, "p.hex: 19 bytes of code, map in p.map\n");
  EXPECT_EQ(Read("p.hex"),
            ":10000000000102030405060708090A0B0C0D0E0F78\n"
            ":020010001011CD\n"
            ":01010000AA54\n"
            ":00000001FF\n");
  std::string map = Read("p.map");
  ASSERT_EQ(Link({"-q", "p.OBJ"}).out, "");
  EXPECT_EQ(Read("p.map"), map);  // the same run gives the same map, byte for byte

  ASSERT_EQ(Link({"--bin", "--fill", "5A", "--no-map", "-q", "p.OBJ"}).status, 0);
  std::string binary = Read("p.bin");
  ASSERT_EQ(binary.size(), 0x101u);
  EXPECT_EQ(binary.substr(0, 3), std::string("\x00\x01\x02", 3));
  EXPECT_EQ(binary.substr(0x12, 0xEE), std::string(0xEE, '\x5A'));
  EXPECT_EQ(binary.back(), '\xAA');
  EXPECT_FALSE(Exists("p.bin.map"));
}

// The map resolves call targets and, from BB5 debug blocks, source lines;
// a nested block with no name goes on in its file. CODE is placed at 10H.
TEST_F(LinkResultTest, MapOfCallsAndLines) {
  Publics({{"d.OBJ", Obj("D", {"ST0,C,A", "ASS0,10", "ASL0,0", "ST1,C,04PROG,0", "ASS1,8", "CL1,R1+4", "NV04FUNC",
                              "BB5,0,07\"A.ASM\"", "NN9C40,00", "ATN9C40,0,7,0C,0", "ASN9C40,(R1+2)",
                              "BB5,0,02\"\"", "NN9C41,00", "ATN9C41,0,7,03,0", "ASN9C41,(R1+0)", "BE5", "BE5",
                              "BB10,0,03\"D\",00,0", "NN9C42,01X", "ATN9C42,7,10,1,0,5", "BE10"})}});
  std::string map = Read("out.map");
  EXPECT_NE(map.find("\nCall targets\n  D                    0014   R1+4\n"), std::string::npos) << map;
  EXPECT_NE(map.find("\nLines\n  0010  A.ASM(3)\n  0012  A.ASM(12)\n"), std::string::npos) << map;
  EXPECT_NE(map.find("\nNot to be overlaid\n  D                    FUNC\n"), std::string::npos) << map;
  EXPECT_NE(map.find(" PROG                 D  owner 0\n"), std::string::npos) << map;
}

// The expression language of fields: the assembler's seven levels, with
// R, X and L terms. Module 0 has segment 2 at 1234H (size 20H) and
// external 5 naming a public of value 100H.
TEST_F(LinkResultTest, FieldExpressions) {
  linker::Linker linker(linker::LinkConsole{stdout, stdout});
  linker::Module& module = linker.modules.emplace_back();
  module.name = "M";
  linker::ModuleSegment segment;
  segment.number = 2;
  segment.base = 0x1234;
  segment.group = 0;
  module.segments.push_back(segment);
  module.segmentByNumber[2] = 0;
  linker::ModuleSegment segmentE = segment;
  segmentE.number = 0xE;
  segmentE.group = 1;
  module.segments.push_back(segmentE);
  module.segmentByNumber[0xE] = 1;
  linker.groups.resize(2);
  linker.groups[0].base = 0x1234;
  linker.groups[0].size = 0x20;
  linker.groups[1].base = 0x40;
  module.externals.push_back({5, "E"});
  module.externalByNumber[5] = 0;
  module.publics.push_back({"E", "100", 0, linker::ValueState::NotYet, 0, -1});
  linker.publics.emplace(module.publics[0].name, linker::PublicRef{0, 0});

  const std::vector<std::pair<std::string, int32_t>> values = {
      {" HIGH ((R2+10)+1)", 0x12},  {"X5-3", 0xFD},         {"2+3*4", 14},         {"1+2 EQ 3", 1},
      {"1 OR 2 AND 0", 1},          {"5 NOT 3", ~3},        {"-1 SHR 1", 0},       {"(-1) SHR 1", -1},
      {"7/-2", -3},                 {"-7 MOD 3", -1},       {"1 SHL &13", 0x2000}, {"1 SHL 21", 2},
      {"LE", 0x40},                 {"L2 LE 5", 0},         {" `SIZE L2", 0x20},   {" `BASE L2", 0x1234},
      {" `SIZE L2+1", 0x21},        {"FFFFFFFF+1", 0},      {"B", 11},             {"+5", 5},
      {" HIGH 1234+1", 0x12},       {" LOW 1234 AND F", 4}, {"1 LT -1", 0},        {"2 GE 2", 1},
      {"1 NE 1", 0},                {"3 XOR 5", 6},         {"8 GT 7", 1},         {"-2*3+1", -5},
  };
  for (const auto& [text, value] : values) {
    linker::EvalResult result = linker::EvaluateText(linker, 0, text);
    EXPECT_EQ(result.status, linker::EvalStatus::Ok) << text;
    EXPECT_EQ(result.value, value) << text;
  }
  const std::vector<std::pair<std::string, linker::EvalStatus>> failures = {
      {"5/0", linker::EvalStatus::DivideByZero}, {"5 MOD 0", linker::EvalStatus::DivideByZero},
      {"(1", linker::EvalStatus::Syntax},        {"1 2", linker::EvalStatus::Syntax},
      {"12G", linker::EvalStatus::Syntax},       {"", linker::EvalStatus::Syntax},
      {"R9", linker::EvalStatus::NoSuchSegment}, {"X9", linker::EvalStatus::NoSuchExternal},
      {std::string(5000, '+') + "1", linker::EvalStatus::TooDeep},
      {std::string(5000, '-') + "1", linker::EvalStatus::TooDeep},
      {" HIGH" + std::string(3000, '(') + "1", linker::EvalStatus::TooDeep},
  };
  for (const auto& [text, status] : failures) EXPECT_EQ(linker::EvaluateText(linker, 0, text).status, status) << text;
}

TEST(PlacementRules, WhereAPartMayStart) {
  using linker::NextAllowed;
  using linker::PrevAllowed;
  linker::PlacementRule page{0x100, 0, 0}, inpage{1, 0, 0x100}, bitaddressable{1, 0x20, 0x10};
  EXPECT_EQ(NextAllowed(page, 1, 5), 0x100u);
  EXPECT_EQ(NextAllowed(inpage, 0xF0, 0x20), 0x100u);
  EXPECT_EQ(NextAllowed(inpage, 0xE0, 0x20), 0xE0u);
  EXPECT_EQ(NextAllowed(inpage, 0, 0x101), std::nullopt);
  EXPECT_EQ(NextAllowed(bitaddressable, 8, 2), 0x20u);
  EXPECT_EQ(NextAllowed(bitaddressable, 0x2F, 2), std::nullopt);  // one window only: 20-2F
  EXPECT_EQ(PrevAllowed(inpage, 0xFFF0, 0x20), 0xFFE0u);
  EXPECT_EQ(PrevAllowed(page, 0x1FF, 1), 0x100u);

  std::vector<uint32_t> bases;
  std::vector<linker::GroupPart> joined = {{{1, 0, 0}, 3}, {{0x10, 0, 0}, 2}};
  EXPECT_EQ(linker::FitLow(joined, false, {0, 0x100}, bases)->end, 0x12u);
  EXPECT_EQ(bases, (std::vector<uint32_t>{0, 0x10}));
  std::vector<linker::GroupPart> common = {{{1, 0, 0}, 2}, {{1, 0, 0}, 5}};
  std::optional<linker::Range> overlaid = linker::FitHigh(common, true, {0, 0x10000}, bases);
  EXPECT_EQ(overlaid->start, 0xFFFBu);
  EXPECT_EQ(bases, (std::vector<uint32_t>{0xFFFB, 0xFFFB}));
  EXPECT_EQ(linker::FitLow(joined, false, {0, 0x11}, bases), std::nullopt);
}

}  // namespace
}  // namespace ta51::testing
