// Additions for Linux users: arguments that start with `--`, which no option
// keyword can collide with, and the dependency file for make.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "core/assembler.h"

namespace ta51 {

extern const char* const kBanner;

struct LinuxOptions {
  bool help = false;
  bool version = false;
  std::string depfile;  // --depfile FILE or --depfile=FILE
  std::string error;    // a message for a `--` argument that cannot be taken
};

// Takes the `--` arguments out of `arguments`.
LinuxOptions TakeLinuxOptions(std::vector<std::string>& arguments);
void PrintUsage(FILE* stream);
// Writes the make rule "OBJECT LIST: SOURCE INCLUDE..." of a finished run;
// false when the file cannot be written.
bool WriteDepFile(const Assembler& as, const std::string& path);

}  // namespace ta51
