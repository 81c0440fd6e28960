// One link run of tl51: its settings, its inputs, the modules, the placed
// segments, the symbols and the code image. Nothing of a run lives outside
// this object, so a run can be repeated in-process with identical results.
#pragma once

#include <cstdint>
#include <cstdio>
#include <deque>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "linker/link_types.h"
#include "linker/memory_model.h"
#include "linker/messages.h"

namespace ta51::linker {

struct LinkConsole {
  FILE* out = stdout;
  FILE* err = stderr;
};

struct LinkOptions {
  std::vector<std::string> inputs;
  std::vector<std::string> libraryDirs;
  std::string output;  // empty: the first input's name with .hex
  std::string map;     // empty: the output's name with .map
  bool noMap = false;
  bool binary = false;
  uint8_t fill = 0xFF;
  bool quiet = false;
  // Addresses open to relocatable segments, per space.
  Range windows[kSpaceCount] = {{0, 0x10000}, {0, 0x10000}, {0x08, 0x80}, {0x08, 0x100}, {0x00, 0x80}};
};

// A public symbol of a linked module.
struct PublicRef {
  int module;
  int index;
};

// Modules that use an external symbol no module defines.
struct UnresolvedUse {
  std::string name;
  std::vector<int> modules;
};

struct Linker {
  explicit Linker(LinkConsole streams) : console(streams) {}
  Linker(const Linker&) = delete;
  Linker& operator=(const Linker&) = delete;

  LinkConsole console;
  LinkOptions options;
  int errorCount = 0;

  // Deques: records and names are read through views into these, which
  // must stay where they are while more files are read.
  std::deque<InputText> files;
  std::deque<Module> modules;  // every module read, library modules too
  std::vector<int> linkOrder;   // the linked ones, in the order of linking
  std::unordered_map<std::string, int> libraryFiles;  // a library named by INCLUDELIB, once each

  std::unordered_map<std::string_view, PublicRef> publics;  // of linked modules
  std::unordered_map<std::string_view, int> libraryPublics;  // first library module defining a name

  std::vector<SegmentGroup> groups;
  std::unordered_map<std::string_view, int> groupByName;
  MemoryModel memory;

  std::vector<uint8_t> image = std::vector<uint8_t>(0x10000, 0);
  std::vector<int32_t> imageOwner = std::vector<int32_t>(0x10000, -1);  // module that loaded the byte
  uint32_t codeBytes = 0;

  std::vector<UnresolvedUse> unresolved;
  std::unordered_map<std::string_view, size_t> unresolvedIndex;
  int evaluationDepth = 0;  // nesting of expressions and public values

  // Prints "where: Error: text" and counts the error.
  void Report(std::string_view where, const std::string& text);
  void Report(std::string_view where, Msg id, std::initializer_list<std::string_view> details) {
    Report(where, FormatMessage(id, details));
  }
  const std::string& PathOf(const Module& module) const { return files[static_cast<size_t>(module.file)].path; }
};

// The stages of a run, in order.
// Reads a file given on the command line or named by INCLUDELIB; false if it
// could not be opened. Its modules are appended to `modules`.
bool ReadInputFile(Linker& linker, const std::string& path, bool library);
// Links the modules given directly and pulls in library modules as needed.
void SelectModules(Linker& linker);
void PlaceSegments(Linker& linker);
void ResolvePublics(Linker& linker);
void LoadCode(Linker& linker);
void ReportUnresolved(Linker& linker);
// Writes the HEX or binary image and the map; false after a failed write.
bool WriteOutputs(Linker& linker);

// Runs one link over the arguments (without the program name); the exit
// status: 0, 1 for a link error, 2 for a bad command line.
int RunLinker(const std::vector<std::string>& arguments, LinkConsole console = LinkConsole{});

}  // namespace ta51::linker
