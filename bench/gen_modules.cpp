// Writes a program of many modules for the link benchmark:
//
//   tl51_gen_modules MODULES LINES DIRECTORY
//
// Module k (mod<k>.asm) has LINES lines, as firmware sources have them: a
// quarter instructions, the rest constants (EQU), comments and blank lines.
// The instructions form routines, each public, that call routines of the
// next modules through EXTRN (LCALL, a field for the linker) and of their
// own module (ACALL, and relative branches to $+4, fields too), and use the
// bytes of a data segment (MOV with a field). 100 modules of 1,000 lines
// fill about 47K of code memory. The text depends only on the arguments.

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int kRoutineLines = 20;  // lines per routine, label included

void WriteModule(FILE* out, int module, int modules, int lines) {
  int routines = lines / (4 * kRoutineLines);
  int callees = modules > 1 ? 4 : 0;
  std::fprintf(out, "; Generated module %d of %d for the link benchmark.\n", module, modules);
  std::fprintf(out, "        NAME    MOD%d\n", module);
  for (int r = 0; r < routines; ++r) std::fprintf(out, "        PUBLIC  R%d_%d\n", module, r);
  for (int c = 1; c <= callees; ++c)
    std::fprintf(out, "        EXTRN   CODE(R%d_%d)\n", (module + c) % modules, c);
  std::fprintf(out, "CODE%d   SEGMENT CODE INBLOCK\nDATA%d   SEGMENT DATA\n", module, module);
  std::fprintf(out, "        RSEG    DATA%d\nV%d:     DS      1\n", module, module);
  std::fprintf(out, "        RSEG    CODE%d\n", module);
  int written = 6 + routines + callees;
  for (int r = 0; r < routines; ++r) {
    std::fprintf(out, "R%d_%d:   MOV     A,V%d\n", module, r, module);
    for (int i = 0; i < kRoutineLines - 3; i += 6) {
      std::fprintf(out, "        ADD     A,#%d\n", (r + i) % 200);
      std::fprintf(out, "        MOV     V%d,A\n", module);
      std::fprintf(out, "        JZ      $+4\n");
      std::fprintf(out, "        INC     R%d\n", i % 8);
      if (callees > 0) std::fprintf(out, "        LCALL   R%d_%d\n", (module + 1 + r % callees) % modules, 1 + r % callees);
      else std::fprintf(out, "        NOP\n");
      std::fprintf(out, "        ACALL   R%d_%d\n", module, r > 0 ? r - 1 : 0);
    }
    std::fprintf(out, "        RET\n");
    written += kRoutineLines - 1;
  }
  for (int n = 0; written < lines - 1; ++written, ++n) {
    if (n % 3 == 0) std::fprintf(out, "K%d_%d   EQU     %d\n", module, n, (n * 7) % 256);
    else if (n % 3 == 1) std::fprintf(out, "; constant %d of module %d: what it is for\n", n, module);
    else std::fprintf(out, "\n");
  }
  std::fprintf(out, "        END\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: tl51_gen_modules MODULES LINES DIRECTORY\n");
    return 2;
  }
  int modules = std::atoi(argv[1]);
  int lines = std::atoi(argv[2]);
  for (int module = 0; module < modules; ++module) {
    std::string path = std::string(argv[3]) + "/mod" + std::to_string(module) + ".asm";
    FILE* out = std::fopen(path.c_str(), "w");
    if (out == nullptr) {
      std::perror(path.c_str());
      return 1;
    }
    WriteModule(out, module, modules, lines);
    std::fclose(out);
  }
  return 0;
}
