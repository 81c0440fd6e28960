// libFuzzer target: links arbitrary bytes as object modules, in-process.
//
// An input is split at its first NUL byte into two files, a.OBJ and b.LIB
// (the second empty when there is no NUL), and both are linked, so that
// libraries and modules of several files are reached too. The run writes
// a.hex and a.map in a private directory, made once, that is the current
// directory of the process; the console goes to /dev/null.
//
// Inputs that name a device or kernel file (/dev/, /proc/, /sys/) are
// refused: a library named so by INCLUDELIB could be read without end,
// which says nothing about the linker.
//
// The process changes its directory at start, so every path given to it
// must be absolute:
//   ./tl51_fuzz -max_total_time=60 -artifact_prefix=$PWD/ $PWD/corpus-copy
//   ./tl51_fuzz $PWD/crash-<hash>          (reproduce one input)

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "linker/linker.h"

namespace {

std::string privateDirectory;

void RemovePrivateDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(privateDirectory, ignored);
}

FILE* Sink() {
  static FILE* sink = [] {
    char directory[] = "/tmp/tl51fuzz-XXXXXX";
    if (mkdtemp(directory) == nullptr || chdir(directory) != 0) {
      std::perror("tl51_fuzz: private directory");
      std::abort();
    }
    privateDirectory = directory;
    std::atexit(RemovePrivateDirectory);
    FILE* file = std::fopen("/dev/null", "w");
    if (file == nullptr) std::abort();
    return file;
  }();
  return sink;
}

void WriteFile(const char* name, const uint8_t* data, size_t size) {
  FILE* file = std::fopen(name, "wb");
  if (file == nullptr || std::fwrite(data, 1, size, file) != size || std::fclose(file) != 0) std::abort();
}

bool NamesSystemFile(std::string_view text) {
  for (std::string_view prefix : {"/dev/", "/proc/", "/sys/"})
    if (text.find(prefix) != std::string_view::npos) return true;
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Sink();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FILE* sink = Sink();
  if (NamesSystemFile(std::string_view(reinterpret_cast<const char*>(data), size))) return -1;
  const uint8_t* split = static_cast<const uint8_t*>(std::memchr(data, 0, size));
  size_t first = split == nullptr ? size : static_cast<size_t>(split - data);
  WriteFile("a.OBJ", data, first);
  WriteFile("b.LIB", split == nullptr ? data : split + 1, split == nullptr ? 0 : size - first - 1);
  ta51::linker::RunLinker({"a.OBJ", "b.LIB"}, ta51::linker::LinkConsole{sink, sink});
  return 0;
}
