// libFuzzer target: assembles arbitrary bytes as a source file, in-process.
//
// The first byte of an input chooses the dialect: odd (such as '1') gives
// fuzz.a51, with the dollar controls and percent macros; even (such as '0')
// gives fuzz.asm. The rest is the text of the source. Every run writes fuzz.OBJ and fuzz.LST and its temporary
// zvtmp* files in a private directory, made once, that is the current
// directory of the process. The console goes to /dev/null.
//
// Inputs that name a device or kernel file (/dev/, /proc/, /sys/) are
// refused: an INCLUDE of /dev/zero or /dev/stdin would read without end,
// which says nothing about the assembler.
//
// The process changes its directory at start, so every path given to it,
// corpus directories and -artifact_prefix, must be absolute:
//   ./ta51_make_dictionary > $PWD/ta51.dict     (every keyword, from the tables)
//   ./ta51_fuzz -max_total_time=60 -dict=$PWD/ta51.dict -artifact_prefix=$PWD/ $PWD/corpus-copy
//   ./ta51_fuzz $PWD/crash-<hash>          (reproduce one input)

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "driver/entry.h"

namespace {

struct FuzzSetup {
  ta51::Console console;
};

std::string privateDirectory;

// A normal end of the fuzzer removes the private directory; after a crash
// it stays, with the input that caused it as fuzz.asm or fuzz.a51.
void RemovePrivateDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(privateDirectory, ignored);
}

FuzzSetup& Setup() {
  static FuzzSetup setup = [] {
    char directory[] = "/tmp/ta51fuzz-XXXXXX";
    if (mkdtemp(directory) == nullptr || chdir(directory) != 0) {
      std::perror("ta51_fuzz: private directory");
      std::abort();
    }
    privateDirectory = directory;
    std::atexit(RemovePrivateDirectory);
    FuzzSetup made;
    FILE* sink = std::fopen("/dev/null", "w");
    FILE* source = std::fopen("/dev/null", "r");
    if (sink == nullptr || source == nullptr) std::abort();
    made.console = ta51::Console{sink, sink, source};
    return made;
  }();
  return setup;
}

bool NamesSystemFile(std::string_view text) {
  for (std::string_view prefix : {"/dev/", "/proc/", "/sys/"})
    if (text.find(prefix) != std::string_view::npos) return true;
  return false;
}

bool WriteSource(const char* name, const uint8_t* data, size_t size) {
  FILE* file = std::fopen(name, "wb");
  if (file == nullptr) return false;
  bool written = std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Setup();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzSetup& setup = Setup();
  if (size == 0) return 0;
  std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (NamesSystemFile(text)) return -1;
  const char* source = (data[0] & 1) != 0 ? "fuzz.a51" : "fuzz.asm";
  if (!WriteSource(source, data + 1, size - 1)) std::abort();
  // Every instruction the second pass could take from the first is read
  // again and compared.
  ta51::RunAssembler({source, "fuzz.OBJ", "fuzz.LST", "/NOLOGO"}, setup.console, ta51::RunChecks{true});
  std::fflush(setup.console.out);
  return 0;
}
