// Every error of tl51 with its message, from object modules written by hand
// so that each case holds exactly the fault it is about. After an error no
// output is left and the status is 1; a bad command line gives status 2.
#include "linker_test_helpers.h"

namespace ta51::testing {
namespace {

struct ErrorCase {
  const char* about;
  std::vector<std::pair<std::string, std::string>> files;  // linked in this order
  std::string messages;                                    // standard error, exactly
};

class LinkErrorTest : public LinkTest {
 protected:
  void Check(const std::vector<ErrorCase>& cases) {
    for (const ErrorCase& error : cases) {
      SCOPED_TRACE(error.about);
      std::vector<std::string> arguments = {"-o", "out.hex"};
      for (const auto& [name, text] : error.files) {
        Write(name, text);
        arguments.push_back(name);
      }
      Write("out.hex", "stale");  // an image of an earlier link must not survive
      RunResult link = Link(arguments);
      EXPECT_EQ(link.status, 1);
      EXPECT_EQ(link.err, error.messages);
      EXPECT_EQ(link.out, "");
      EXPECT_FALSE(Exists("out.hex"));
      EXPECT_FALSE(Exists("out.map"));
      for (const auto& entry : std::filesystem::directory_iterator(directory_))
        EXPECT_EQ(entry.path().filename().string().find(".tmp"), std::string::npos) << entry.path();
    }
  }
};

TEST_F(LinkErrorTest, RecordsThatAreNotOfTheFormat) {
  Check({
      {"unknown record", {{"a.OBJ", Obj("A", {"XY1"})}}, "a.OBJ: Error: record 3: unknown record 'XY1'\n"},
      {"no full stop, carriage return and line feed", {{"a.OBJ", "MB8051,03\"A\"\n"}},
       "a.OBJ: Error: record 1: no \".\\r\\n\" at its end\n"},
      {"letters for a number", {{"a.OBJ", Obj("A", {"ST0,C,02CA", "SBG"})}},
       "a.OBJ: Error: record 4: 'G' is not a hexadecimal number\n"},
      {"nine digits", {{"a.OBJ", Obj("A", {"ST0,C,02CA", "ASS0,123456789"})}},
       "a.OBJ: Error: record 4: '123456789' is not a hexadecimal number\n"},
      {"end of file inside a module", {{"a.OBJ", "MB8051,03\"A\".\r\nAD8,2,L.\r\n"}},
       "a.OBJ: Error: record 2: module A has no ME record\n"},
      {"text after ME", {{"a.OBJ", Obj("A", {}) + "AD8,2,L.\r\n"}},
       "a.OBJ: Error: record 4: text after ME that is not another module\n"},
      {"no MB", {{"a.OBJ", "AD8,2,L.\r\n"}}, "a.OBJ: Error: record 1: not an object module, no MB record\n"},
      {"an empty file", {{"a.OBJ", ""}}, "a.OBJ: Error: record 1: not an object module, no MB record\n"},
      {"malformed ST", {{"a.OBJ", Obj("A", {"ST0,Q,02CA"})}}, "a.OBJ: Error: record 3: malformed ST record\n"},
      {"malformed LR", {{"a.OBJ", Obj("A", {"ST0,C,02CA", "SB0", "LR0"})}},
       "a.OBJ: Error: record 5: malformed LR record\n"},
      {"undeclared segment", {{"a.OBJ", Obj("A", {"SB5"})}},
       "a.OBJ: Error: record 3: segment 5 is not declared in the module\n"},
      {"segment declared twice", {{"a.OBJ", Obj("A", {"ST0,C,02CA", "ST0,C,02CB"})}},
       "a.OBJ: Error: record 4: segment 0 is declared twice\n"},
      {"LR before any SB", {{"a.OBJ", Obj("A", {"LR00"})}}, "a.OBJ: Error: record 3: LR record out of place\n"},
      {"NI without its ASI", {{"a.OBJ", Obj("A", {"NI0,01X", "NX1,01Y"})}},
       "a.OBJ: Error: record 4: NI record out of place\n"},
      {"IRG of another segment", {{"a.OBJ", Obj("A", {"ST0,C,02CA", "ST1,C,02CB", "SB0", "IRG,R1"})}},
       "a.OBJ: Error: record 6: IRG record out of place\n"},
      {"a field of three bytes", {{"a.OBJ", Obj("A", {"ST0,C,02CA", "ASS0,3", "SB0", "LR(R0,3,I)"})}},
       "a.OBJ: Error: record 6: a field of 3 bytes\n"},
      {"debug block left open", {{"a.OBJ", Obj("A", {"BB3,0,04\"AB\""})}},
       "a.OBJ: Error: record 4: debug block BB3 is not closed\n"},
      {"debug block end with no block", {{"a.OBJ", Obj("A", {"BE5"})}},
       "a.OBJ: Error: record 3: BE5 closes no open block\n"},
      {"absolute segment with no address", {{"a.OBJ", Obj("A", {"ST0,C,A", "ASS0,1"})}},
       "a.OBJ: Error: record 5: absolute segment 0 has no ASL record\n"},
  });
  RunResult missing = Link({"missing.OBJ"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "missing.OBJ: Error: cannot open missing.OBJ\n");
}

TEST_F(LinkErrorTest, ModulesThatDoNotFitTogether) {
  Check({
      {"code banks", {{"a.OBJ", Obj("A", {"NC1,04PORT", "ST1,K,0C__CODE_BANK1,0,0,1", "ASM1,2"})}},
       "a.OBJ: Error: module A uses code bank __CODE_BANK1: code banks are not supported yet\n"},
      {"a bank number alone", {{"a.OBJ", Obj("A", {"ASM3,2"})}},
       "a.OBJ: Error: module A uses code bank number 3: code banks are not supported yet\n"},
      {"absolute code overlaps",
       {{"a.OBJ", Obj("A", {"ST0,C,A", "ASS0,3", "ASL0,0"})}, {"b.OBJ", Obj("B", {"ST0,C,A", "ASS0,2", "ASL0,2"})}},
       "b.OBJ: Error: absolute segments of modules A and B overlap at CODE 0002H\n"},
      {"bits in a byte of absolute data",
       {{"a.OBJ", Obj("A", {"ST0,D,Z,A", "ASS0,1", "ASL0,21"})}, {"b.OBJ", Obj("B", {"ST0,B,Z,A", "ASS0,2", "ASL0,9"})}},
       "b.OBJ: Error: absolute segments of modules A and B overlap at BIT 09H-0AH\n"},
      {"absolute code past FFFF", {{"a.OBJ", Obj("A", {"ST0,C,A", "ASS0,2", "ASL0,FFFF"})}},
       "a.OBJ: Error: absolute CODE segment 0 of module A ends past FFFFH\n"},
      {"one name, two spaces",
       {{"a.OBJ", Obj("A", {"ST0,C,04SEGX", "ASS0,1"})}, {"b.OBJ", Obj("B", {"ST0,D,Z,04SEGX", "ASS0,1"})}},
       "b.OBJ: Error: segment SEGX is CODE in module A but DATA in module B\n"},
      {"no room", {{"a.OBJ", Obj("A", {"ST0,D,Z,A", "ASS0,1", "ASL0,40", "ST1,D,Z,03BIG", "ASS1,40"})}},
       "a.OBJ: Error: segment BIG of module A, 40H bytes, fits nowhere in DATA; free: 08H-3FH, 41H-7FH\n"},
      {"public defined twice", {{"a.OBJ", Obj("A", {"NI0,01P", "ASI0,5"})}, {"b.OBJ", Obj("B", {"NI0,01P", "ASI0,6"})}},
       "b.OBJ: Error: public symbol P is defined in module A and in module B\n"},
      {"external nobody defines; an unused one is ignored",
       {{"a.OBJ", Obj("A", {"NX1,03FOO", "NX2,03BAR", "ST0,C,01C", "ASS0,2", "SB0", "LR(X1,2,I)"})},
        {"b.OBJ", Obj("B", {"NX4,03FOO", "ST0,C,01D", "ASS0,1", "SB0", "LR(X4,1,I)"})}},
       "a.OBJ: Error: external symbol FOO is defined by no module; used by A, B\n"},
      {"library not found", {{"a.OBJ", Obj("A", {"LI07NOT.LIB"})}},
       "a.OBJ: Error: library NOT.LIB, named by module A, not found\n"},
      {"public defined through itself",
       {{"p.OBJ", Obj("P", {"NX1,01B", "NX2,01A", "NI0,01A", "ASI0,X1+1", "NI1,01B", "ASI1,X2"})}},
       "p.OBJ: Error: public symbol B of module P is defined through itself\n"},
      {"public that cannot be worked out", {{"p.OBJ", Obj("P", {"NI0,01C", "ASI0,1/0"})}},
       "p.OBJ: Error: public symbol C of module P: Divide by zero : 1/0\n"},
      {"load data past the segment", {{"l.OBJ", Obj("L", {"ST0,C,02CA", "ASS0,1", "SB0", "LR0000"})}},
       "l.OBJ: Error: load data outside segment CA of module L, at offset 0000H\n"},
      {"load data in data memory", {{"l.OBJ", Obj("L", {"ST0,D,Z,02DA", "ASS0,1", "SB0", "LR00"})}},
       "l.OBJ: Error: load data in DATA segment DA of module L: only code memory has an image\n"},
      {"a byte loaded twice", {{"t.OBJ", Obj("T", {"ST0,C,02CA", "ASS0,2", "SB0", "LR00", "ASP,0", "LR01"})}},
       "t.OBJ: Error: code address 0000H is loaded twice, by module T and by module T\n"},
  });
}

// Fields, each checked as its instruction needs. CODE is placed at 0 and
// DATA at 08; each message names the field's source reference, or without
// one the module, segment and offset.
TEST_F(LinkErrorTest, FieldsThatDoNotFit) {
  const std::string ajmp800 =
      "((((HIGH (800)) SHL &13) AND FFFF) OR (LOW (800)) OR 0100 OR ((((HIGH (800)) SHL &13) AND FFFF0000) XOR "
      "(((HIGH (R0+B)) SHL &13) AND FFFF0000)))";
  const std::string ajmp700At7FE =
      "((((HIGH (700)) SHL &13) AND FFFF) OR (LOW (700)) OR 0100 OR ((((HIGH (700)) SHL &13) AND FFFF0000) XOR "
      "(((HIGH (7FE)) SHL &13) AND FFFF0000)))";
  std::string deep = std::string(1001, '(') + "1" + std::string(1001, ')');
  Check({{"fields",
          {{"f.OBJ", Obj("F", {"ST0,C,04CODE", "ASS0,40", "ST1,D,Z,04DATA", "ASS1,1", "ST2,C,A", "ASS2,2", "ASL2,7FE",
                               "SB0",
                               "LR80(R0+90,1,I,0009f*asm(12))",  // 0: SJMP 144 ahead
                               "LR74(100,1,I)",                  // 2
                               "LR74(-100,1,I)",                 // 4
                               "LR74(-FF,1,I)",                  // 6: -255 fits
                               "LR02(10000,2,I)",                // 8
                               "LR(" + ajmp800 + ",2,I)",        // B: target in the next 2K block
                               "LRD2(((R1)-20)*8+0,1,I)",        // D: SETB 08H.0, no bit-addressable byte
                               "LR74(5/0,1,I)",                  // F
                               "LR74(5+,1,I)",                   // 11
                               "LR74(R7,1,I)",                   // 13
                               "LR74(X3,1,I)",                   // 15
                               "LR74(" + deep + ",1,I)",         // 17
                               "SB2", "LR(" + ajmp700At7FE + ",2,I,000Cinc*inc(300))"})}},
          "f.asm(12): Error: Relative jump out of range : distance 144\n"
          "f.OBJ: Error: Value does not fit in a byte : 100H (module F, segment CODE, offset 0002H)\n"
          "f.OBJ: Error: Value does not fit in a byte : -100H (module F, segment CODE, offset 0004H)\n"
          "f.OBJ: Error: Value does not fit in a word : 10000H (module F, segment CODE, offset 0008H)\n"
          "f.OBJ: Error: AJMP/ACALL target outside its 2K block : target 0800H (module F, segment CODE, offset 000BH)\n"
          "f.OBJ: Error: Bit address outside the bit-addressable RAM : byte 08H (module F, segment CODE, offset 000DH)\n"
          "f.OBJ: Error: Divide by zero : 5/0 (module F, segment CODE, offset 000FH)\n"
          "f.OBJ: Error: Bad expression text : 5+ (module F, segment CODE, offset 0011H)\n"
          "f.OBJ: Error: Segment 7 is not declared in module F : R7 (module F, segment CODE, offset 0013H)\n"
          "f.OBJ: Error: External 3 is not declared in module F : X3 (module F, segment CODE, offset 0015H)\n"
          "f.OBJ: Error: Expression nested too deeply : " + std::string(60, '(') +
          " (module F, segment CODE, offset 0017H)\n"
          "inc.inc(300): Error: AJMP/ACALL target outside its 2K block : target 0700H\n"}});
}

TEST_F(LinkErrorTest, CommandLine) {
  Write("a.OBJ", Obj("A", {}));
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"--frob", "a.OBJ"}, "unknown option --frob"},
      {{"a.OBJ", "-o"}, "option -o needs a value"},
      {{"--data", "08-80", "a.OBJ"}, "--data wants a range LO-HI of hexadecimal addresses within 00-7F, not '08-80'"},
      {{"--code", "100-FF", "a.OBJ"}, "--code wants a range LO-HI of hexadecimal addresses within 00-FFFF, not '100-FF'"},
      {{"--fill", "100", "--bin", "a.OBJ"}, "--fill wants a hexadecimal byte, not '100'"},
      {{"-q"}, "no object module or library given"},
      {{"-o", "a.OBJ", "a.OBJ"}, "the output file a.OBJ is also an input"},
  };
  for (const auto& [arguments, message] : cases) {
    RunResult link = Link(arguments);
    EXPECT_EQ(link.status, 2) << message;
    EXPECT_EQ(link.err, "tl51: Error: " + message + "\ntl51 --help lists the options\n");
    EXPECT_FALSE(Exists("a.hex"));
  }
  EXPECT_EQ(Read("a.OBJ"), Obj("A", {}));
  RunResult help = Link({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("usage: tl51 [options] FILE.OBJ|FILE.LIB ..."), std::string::npos);
}

}  // namespace
}  // namespace ta51::testing
