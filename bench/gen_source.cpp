// Writes a synthetic 8051 source of exactly N physical lines for timing the
// assembler:
//
//   ta51_gen_source N [--labels K] [--sites S] [-o FILE]
//
// The source uses the .asm dialect. It holds S label lines (default K),
// spread evenly over the file, of which K, spread evenly among them, define
// a distinct code label (default N/10); the others hold the same instruction
// with no label. Two sources with the same N and S differ only in the number
// of distinct labels, which isolates the cost of the symbol table. Between
// the label lines stands a mix of instructions
// that refer to labels anywhere in the file, EQU symbols, a SET symbol that
// changes as the file goes, expressions, DB strings and DW words, comment
// lines, trailing comments and continuation lines. A new relocatable code segment starts every 4096 lines
// so that no segment outgrows the 64 KiB code space. The text depends only on
// N and K, so runs can be compared.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr long kSegmentLines = 4096;

struct Settings {
  long lines = 0;
  long labels = -1;
  long sites = -1;
  const char* output = nullptr;
};

class Generator {
 public:
  explicit Generator(const Settings& settings)
      : total_(settings.lines), labels_(settings.labels), sites_(settings.sites) {}

  std::string Run() {
    Emit("; synthetic source: " + std::to_string(total_) + " lines, " + std::to_string(labels_) +
         " labels");
    Emit("V\tSET\t0");
    while (written_ < total_ - 1) Step();
    if (written_ < total_) Emit("\tEND");
    return text_;
  }

 private:
  long total_, labels_, sites_;
  long written_ = 0;
  long nextSite_ = 0;
  long nextLabel_ = 0;
  long statements_ = 0;
  long equCount_ = 0;
  long segmentCount_ = 0;
  long segmentLines_ = kSegmentLines;  // forces a segment at the start
  uint32_t random_ = 12345;
  std::string text_;

  void Emit(const std::string& line) {
    text_ += line;
    text_ += '\n';
    ++written_;
  }

  long Left() const { return total_ - 1 - written_; }  // room before END

  uint32_t Next() {
    random_ = random_ * 1103515245u + 12345u;
    return random_ >> 8;
  }

  static std::string Number(long value, int width) {
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "%0*ld", width, value);
    return buffer;
  }

  std::string AnyLabel() { return "L" + Number(labels_ > 0 ? Next() % labels_ : 0, 6); }
  std::string AnyEqu() {
    return equCount_ > 0 ? "E" + Number(Next() % equCount_, 5) : std::string("1");
  }

  // A label line is due on the line about to be written.
  bool SiteDue() const { return nextSite_ < sites_ && nextSite_ * total_ <= written_ * sites_; }

  void Step() {
    if (segmentLines_ >= kSegmentLines && Left() >= 2) return StartSegment();
    if (SiteDue()) return LabelLine();
    StatementLine();
  }

  void StartSegment() {
    std::string name = "SEG" + Number(segmentCount_++, 4);
    Emit(name + "\tSEGMENT\tCODE");
    Emit("\tRSEG\t" + name);
    segmentLines_ = 2;
  }

  void LabelLine() {
    std::string label;
    if (nextLabel_ < labels_ && nextLabel_ * sites_ <= nextSite_ * labels_)
      label = "L" + Number(nextLabel_++, 6) + ":";
    ++nextSite_;
    Emit(label + "\tMOV\tA,#" + std::to_string(Next() % 256));
    ++segmentLines_;
  }

  void StatementLine() {
    long before = written_;
    switch (statements_++ % 12) {
      case 0: Emit("\tMOV\tA,#LOW (V*3+" + std::to_string(Next() % 1000) + ")"); break;
      case 1: Emit("\tLJMP\t" + AnyLabel()); break;
      case 2: Emit("V\tSET\tV+1"); break;
      case 3: Emit("; comment line " + std::to_string(written_)); break;
      case 4: Emit("\tLCALL\t" + AnyLabel() + "\t; call a routine"); break;
      case 5: Continuation(); break;
      case 6: Emit("\tMOV\tDPTR,#" + AnyLabel() + "+2"); break;
      case 7: Emit("\tADD\tA,R" + std::to_string(Next() % 8)); break;
      case 8: Emit("\tMOV\tDPTR,#" + AnyLabel() + "-" + AnyEqu()); break;
      case 9: DefineEqu(); break;
      case 10: Emit("\tDB\t'text ''" + std::to_string(Next() % 100) + "''', 0DH, 0AH, " + AnyEqu()); break;
      default: Emit("\tDW\t" + AnyLabel() + ", " + AnyLabel() + "+1, " + std::to_string(Next() % 65536)); break;
    }
    segmentLines_ += written_ - before;
  }

  void Continuation() {
    if (Left() < 2) return Emit("\tNOP");
    Emit("\tMOV\tA, \\");
    Emit("\t\t#" + std::to_string(Next() % 256) + " AND 0FH");
  }

  void DefineEqu() {
    std::string value = "(" + std::to_string(Next() % 4096) + " * 3 + 1) AND 0FFFH";
    if (equCount_ > 0) value += " OR " + AnyEqu();
    Emit("E" + Number(equCount_++, 5) + "\tEQU\t" + value);
  }
};

bool ParseNumber(const char* text, long& value) {
  char* end = nullptr;
  value = std::strtol(text, &end, 10);
  return end != text && *end == '\0' && value >= 0;
}

bool ParseArguments(int argc, char** argv, Settings& settings) {
  bool haveLines = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--labels") == 0 && i + 1 < argc) {
      if (!ParseNumber(argv[++i], settings.labels)) return false;
    } else if (std::strcmp(argv[i], "--sites") == 0 && i + 1 < argc) {
      if (!ParseNumber(argv[++i], settings.sites)) return false;
    } else if (std::strcmp(argv[i], "-o") == 0 && i + 1 < argc) {
      settings.output = argv[++i];
    } else if (!haveLines && ParseNumber(argv[i], settings.lines)) {
      haveLines = true;
    } else {
      return false;
    }
  }
  if (settings.labels < 0) settings.labels = settings.lines / 10;
  if (settings.sites < 0) settings.sites = settings.labels;
  return haveLines && settings.lines >= 3 && settings.labels <= settings.sites &&
         settings.sites <= settings.lines / 2 &&
         settings.lines < 100000000;
}

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  if (!ParseArguments(argc, argv, settings)) {
    std::fprintf(stderr,
                 "usage: ta51_gen_source N [--labels K] [--sites S] [-o FILE]\n"
                 "  N >= 3 lines; K <= S <= N/2; K defaults to N/10, S to K\n");
    return 2;
  }
  std::string text = Generator(settings).Run();
  FILE* out = settings.output != nullptr ? std::fopen(settings.output, "wb") : stdout;
  if (out == nullptr) {
    std::perror(settings.output);
    return 1;
  }
  bool ok = std::fwrite(text.data(), 1, text.size(), out) == text.size();
  ok = (out == stdout ? std::fflush(out) : std::fclose(out)) == 0 && ok;
  return ok ? 0 : 1;
}
