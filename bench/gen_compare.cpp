// Writes one synthetic 8051 program twice, in ta51 syntax and in as31
// syntax, so that both assemblers can be timed on the same work and their
// code images compared byte for byte:
//
//   ta51_gen_compare dense|symbols LINES TA51_FILE AS31_FILE
//
// "dense": about 70% instructions of every addressing mode, 10% labels,
// 10% EQU, 5% DB/DW, the rest comments and blank lines.
// "symbols": about 10% labels and 49% EQU (590,000 symbols at 1M lines);
// instructions fill the rest as long as the code space allows, comments and
// blank lines after that.
//
// The generator knows every instruction's length, so it places each byte
// itself: code stays below FF00H, nothing overlaps, relative jumps and
// AJMP/ACALL reach only labels in range (forward or backward), and LJMP,
// LCALL, MOV DPTR and DW refer to labels anywhere. EQUs refer only to earlier
// EQUs and keep their values within a byte. The text depends only on the
// arguments. A summary goes to standard error.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kCodeLimit = 0xFF00;

// Operand kinds that the second phase fills in once every label has its address.
enum class Target { None, Relative, Block, Anywhere };

struct Item {
  std::string text;     // ta51 form; `$` is the location counter, `%T` the target
  std::string as31;     // as31 form when it differs from text (empty: same)
  uint32_t pc = 0;      // address of the first byte
  uint32_t size = 0;
  Target target = Target::None;
};

struct Mix {
  int instructions, labels, equs, data, comments;  // per thousand; blanks take the rest
  uint32_t originEvery;                            // an ORG forward about once in so many lines
};

constexpr Mix kDense = {700, 100, 100, 50, 30, 3000};
constexpr Mix kSymbols = {390, 100, 490, 0, 10, 0};

const char* const kDirectNames[] = {"ACC", "B", "PSW", "SP", "DPL", "DPH", "P0", "P1", "P2", "P3", "TMOD", "SBUF"};
const char* const kBitNames[] = {"EA", "ET0", "IT0", "TR1", "RI", "TI", "OV", "F0", "RS0", "CY"};
const char* const kBitBytes[] = {"ACC", "B", "PSW", "P1", "P3"};

// Instruction forms: `r` register R0-R7, `i` @R0/@R1 index, `#` immediate
// byte, `W` a 16-bit number, `d` direct address, `b` bit; a target label
// `L` in relative reach, `K` in the same 2K block, `F` anywhere. Size in bytes.
struct Form {
  const char* pattern;
  uint8_t size;
};

constexpr Form kForms[] = {
    {"NOP", 1}, {"RET", 1}, {"RETI", 1}, {"RL\tA", 1}, {"RLC\tA", 1}, {"RR\tA", 1}, {"RRC\tA", 1},
    {"SWAP\tA", 1}, {"DA\tA", 1}, {"CLR\tA", 1}, {"CPL\tA", 1}, {"INC\tA", 1}, {"DEC\tA", 1},
    {"INC\tr", 1}, {"DEC\tr", 1}, {"INC\ti", 1}, {"DEC\ti", 1}, {"INC\tDPTR", 1}, {"MUL\tAB", 1},
    {"DIV\tAB", 1}, {"ADD\tA,r", 1}, {"ADDC\tA,i", 1}, {"SUBB\tA,r", 1}, {"ANL\tA,r", 1},
    {"ORL\tA,i", 1}, {"XRL\tA,r", 1}, {"XCH\tA,r", 1}, {"XCH\tA,i", 1}, {"XCHD\tA,i", 1},
    {"MOV\tA,r", 1}, {"MOV\tr,A", 1}, {"MOV\ti,A", 1}, {"MOV\tA,i", 1}, {"MOVC\tA,@A+DPTR", 1},
    {"MOVC\tA,@A+PC", 1}, {"MOVX\tA,@DPTR", 1}, {"MOVX\t@DPTR,A", 1}, {"MOVX\tA,i", 1},
    {"MOVX\ti,A", 1}, {"JMP\t@A+DPTR", 1}, {"CLR\tC", 1}, {"SETB\tC", 1}, {"CPL\tC", 1},
    {"MOV\tA,#", 2}, {"MOV\tr,#", 2}, {"MOV\ti,#", 2}, {"MOV\tA,d", 2}, {"MOV\td,A", 2},
    {"MOV\tr,d", 2}, {"MOV\td,r", 2}, {"MOV\ti,d", 2}, {"MOV\td,i", 2}, {"ADD\tA,#", 2},
    {"ADDC\tA,d", 2}, {"SUBB\tA,#", 2}, {"ANL\tA,#", 2}, {"ORL\td,A", 2}, {"XRL\tA,d", 2},
    {"XCH\tA,d", 2}, {"PUSH\td", 2}, {"POP\td", 2}, {"INC\td", 2}, {"DEC\td", 2}, {"SETB\tb", 2},
    {"CLR\tb", 2}, {"CPL\tb", 2}, {"MOV\tC,b", 2}, {"MOV\tb,C", 2}, {"ANL\tC,b", 2},
    {"ANL\tC,/b", 2}, {"ORL\tC,/b", 2}, {"ORL\tC,b", 2}, {"SJMP\tL", 2}, {"JC\tL", 2}, {"JNC\tL", 2},
    {"JZ\tL", 2}, {"JNZ\tL", 2}, {"DJNZ\tr,L", 2}, {"AJMP\tK", 2}, {"ACALL\tK", 2},
    {"MOV\td,#", 3}, {"MOV\td,d", 3}, {"ANL\td,#", 3}, {"ORL\td,#", 3}, {"XRL\td,#", 3},
    {"MOV\tDPTR,#W", 3}, {"MOV\tDPTR,#F", 3}, {"LJMP\tF", 3}, {"LCALL\tF", 3}, {"CJNE\tA,#,L", 3},
    {"CJNE\tA,d,L", 3}, {"CJNE\tr,#,L", 3}, {"CJNE\ti,#,L", 3}, {"DJNZ\td,L", 3}, {"JB\tb,L", 3},
    {"JNB\tb,L", 3}, {"JBC\tb,L", 3},
};

class Generator {
 public:
  Generator(const Mix& mix, long lines) : mix_(mix), total_(lines) {}

  void Run(FILE* ta51, FILE* as31) {
    items_.reserve(static_cast<size_t>(total_));
    Add("; synthetic comparison program, " + std::to_string(total_) + " lines");
    Origin(0);
    while (static_cast<long>(items_.size()) < total_ - 1) Step();
    Resolve();
    for (const Item& item : items_) {
      std::fputs(item.text.c_str(), ta51);
      std::fputc('\n', ta51);
      std::string other = item.as31.empty() ? item.text : item.as31;
      std::replace(other.begin(), other.end(), '$', '*');
      std::fputs(other.c_str(), as31);
      std::fputc('\n', as31);
    }
    std::fputs("\tEND\n", ta51);
    std::fputs("\t.end\n", as31);
    std::fprintf(stderr, "%ld lines, %ld labels, %zu EQUs, %ld instructions, %u code bytes (up to %04XH)\n",
                 total_, labelCount_, equValues_.size(), instructionCount_, bytes_, pc_);
  }

 private:
  Mix mix_;
  long total_;
  std::vector<Item> items_;
  std::vector<uint32_t> labelAddresses_;  // in address order, as labels are placed
  std::vector<int> equValues_;
  long labelCount_ = 0;
  long instructionCount_ = 0;
  uint32_t pc_ = 0;
  uint32_t bytes_ = 0;
  uint32_t random_ = 20261123;

  uint32_t Next() {
    random_ = random_ * 1103515245u + 12345u;
    return random_ >> 8;
  }
  uint32_t Below(uint32_t n) { return Next() % n; }

  Item& Add(std::string text, std::string as31 = {}) {
    Item& item = items_.emplace_back();
    item.text = std::move(text);
    item.as31 = std::move(as31);
    item.pc = pc_;
    return item;
  }

  static std::string Hex(uint32_t value, int width) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "0%0*XH", width, value);
    return buffer;
  }
  static std::string Name(char letter, long number) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%c%06ld", letter, number);
    return buffer;
  }

  void Origin(uint32_t address) {
    pc_ = address;
    if (address == 0) Add("\tCSEG\tAT\t0", "\t.org\t0");
    else Add("\tORG\t" + Hex(address, 4), "\t.org\t" + Hex(address, 4));
  }

  // Code may grow in step with the lines written, so that it spreads over the file.
  bool Fits(uint32_t size) const {
    double share = static_cast<double>(items_.size() + 1) / static_cast<double>(total_);
    return pc_ + size <= kCodeLimit && pc_ + size <= static_cast<uint32_t>(share * kCodeLimit) + 64;
  }

  void Step() {
    if (mix_.originEvery != 0 && Below(mix_.originEvery) == 0 && Fits(32)) return Origin(pc_ + 1 + Below(31));
    int pick = static_cast<int>(Below(1000));
    if ((pick -= mix_.instructions) < 0) return Instruction();
    if ((pick -= mix_.labels) < 0) return Label();
    if ((pick -= mix_.equs) < 0) return Equ();
    if ((pick -= mix_.data) < 0) return Data();
    if ((pick -= mix_.comments) < 0) return Comment();
    Add("");
  }

  void Comment() { Add("; line " + std::to_string(items_.size() + 1) + " of the program"); }

  void Label() {
    Add(Name('L', labelCount_++) + ":");
    labelAddresses_.push_back(pc_);
  }

  void Equ() {
    std::string name = Name('E', static_cast<long>(equValues_.size()));
    int value = static_cast<int>(Below(256));
    std::string text = std::to_string(value);
    if (!equValues_.empty() && Below(2) == 0) {
      size_t earlier = Below(static_cast<uint32_t>(equValues_.size()));
      int plus = static_cast<int>(Below(static_cast<uint32_t>(256 - equValues_[earlier])));
      value = equValues_[earlier] + plus;
      text = Name('E', static_cast<long>(earlier)) + "+" + std::to_string(plus);
    }
    equValues_.push_back(value);
    Add(name + "\tEQU\t" + text, "\t.equ\t" + name + ", " + text);
  }

  void Data() {
    bool words = Below(3) == 0;
    uint32_t count = 1 + Below(4);
    uint32_t size = words ? 2 * count : count;
    std::string text, as31;
    if (!words && Below(2) == 0) {  // a string
      std::string letters;
      for (uint32_t i = 0; i < count; ++i) letters += static_cast<char>('A' + Below(26));
      text = "'" + letters + "'";
      as31 = "\"" + letters + "\"";
    } else {
      for (uint32_t i = 0; i < count; ++i) {
        if (i > 0) text += ", ";
        text += words ? (labelCount_ > 0 && Below(2) == 0 ? Name('L', Below(static_cast<uint32_t>(labelCount_)))
                                                          : std::to_string(Below(65536)))
                      : Immediate();
      }
      as31 = text;
    }
    if (!Fits(size)) return Comment();
    Add(std::string(words ? "\tDW\t" : "\tDB\t") + text, std::string(words ? "\t.dw\t" : "\t.db\t") + as31);
    pc_ += size;
    bytes_ += size;
  }

  std::string Register() { return "R" + std::to_string(Below(8)); }
  std::string Index() { return "@R" + std::to_string(Below(2)); }

  std::string Immediate() {
    switch (Below(5)) {
      case 0: return Hex(Below(256), 2);
      case 1: return "'" + std::string(1, static_cast<char>('a' + Below(26))) + "'";
      case 2:
      case 3:
        if (!equValues_.empty()) return Name('E', Below(static_cast<uint32_t>(equValues_.size())));
        [[fallthrough]];
      default: return std::to_string(Below(256));
    }
  }

  std::string Direct() {
    switch (Below(4)) {
      case 0: return kDirectNames[Below(std::size(kDirectNames))];
      case 1: return Hex(Below(128), 2);
      case 2:
        if (!equValues_.empty()) return Name('E', Below(static_cast<uint32_t>(equValues_.size())));
        [[fallthrough]];
      default: return std::to_string(Below(128));
    }
  }

  std::string Bit() {
    switch (Below(4)) {
      case 0: return kBitNames[Below(std::size(kBitNames))];
      case 1: return std::string(kBitBytes[Below(std::size(kBitBytes))]) + "." + std::to_string(Below(8));
      case 2: return Hex(0x20 + Below(16), 2) + "." + std::to_string(Below(8));
      default: return std::to_string(Below(128));
    }
  }

  void Instruction() {
    const Form& form = kForms[Below(std::size(kForms))];
    if (!Fits(form.size)) return Comment();
    const char* operands = std::strchr(form.pattern, '\t');
    if (operands == nullptr) operands = form.pattern + std::strlen(form.pattern);
    std::string text = "\t" + std::string(form.pattern, operands);  // the mnemonic, as it stands
    Target target = Target::None;
    for (const char* p = operands; *p != '\0'; ++p) {
      switch (*p) {
        case 'r': text += Register(); break;
        case 'i': text += Index(); break;
        case '#':
          text += "#";
          if (p[1] == ',' || p[1] == '\0') text += Immediate();
          break;
        case 'd': {
          std::string direct = Direct();
          if (direct == "ACC" && text == "\tMOV\tA,") direct = "B";  // ta51 refuses MOV A,ACC
          text += direct;
          break;
        }
        case 'b': text += Bit(); break;
        case 'W': text += std::to_string(Below(65536)); break;
        case 'L': text += "%T"; target = Target::Relative; break;
        case 'K': text += "%T"; target = Target::Block; break;
        case 'F': text += "%T"; target = Target::Anywhere; break;
        default: text += *p;
      }
    }
    if (Below(8) == 0) text += "\t; note";
    Item& item = Add(text);
    item.size = form.size;
    item.target = target;
    pc_ += form.size;
    bytes_ += form.size;
    ++instructionCount_;
  }

  // A label whose address lies in [low, high], or "" if none does.
  std::string LabelBetween(int64_t low, int64_t high) {
    auto first = std::lower_bound(labelAddresses_.begin(), labelAddresses_.end(), low);
    auto last = std::upper_bound(labelAddresses_.begin(), labelAddresses_.end(), high);
    if (first >= last) return {};
    return Name('L', (first - labelAddresses_.begin()) + Below(static_cast<uint32_t>(last - first)));
  }

  void Resolve() {
    for (Item& item : items_) {
      size_t at = item.text.find("%T");
      if (at == std::string::npos) continue;
      int64_t next = item.pc + item.size;
      std::string label;
      std::string fallback = "$";
      switch (item.target) {
        case Target::Relative: label = LabelBetween(next - 128, next + 127); break;
        case Target::Block:
          label = LabelBetween(next & ~int64_t{0x7FF}, next | 0x7FF);
          fallback = "$+2";
          break;
        default:
          if (!labelAddresses_.empty()) label = Name('L', Below(static_cast<uint32_t>(labelAddresses_.size())));
          break;
      }
      item.text.replace(at, 2, label.empty() ? fallback : label);
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  char* end = nullptr;
  long lines = argc == 5 ? std::strtol(argv[2], &end, 10) : 0;
  bool dense = argc == 5 && std::strcmp(argv[1], "dense") == 0;
  bool symbols = argc == 5 && std::strcmp(argv[1], "symbols") == 0;
  if ((!dense && !symbols) || end == nullptr || *end != '\0' || lines < 10 || lines > 20000000) {
    std::fprintf(stderr, "usage: ta51_gen_compare dense|symbols LINES TA51_FILE AS31_FILE\n");
    return 2;
  }
  FILE* ta51 = std::fopen(argv[3], "wb");
  FILE* as31 = std::fopen(argv[4], "wb");
  if (ta51 == nullptr || as31 == nullptr) {
    std::perror("ta51_gen_compare");
    return 1;
  }
  Generator(dense ? kDense : kSymbols, lines).Run(ta51, as31);
  bool ok = std::fclose(ta51) == 0;
  ok = std::fclose(as31) == 0 && ok;
  return ok ? 0 : 1;
}
