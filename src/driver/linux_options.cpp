#include "driver/linux_options.h"

#include <string_view>
#include <unordered_set>

namespace ta51 {

const char* const kBanner = "Tavelin 8051 Relocatable Macro Cross-Assembler Version 2.31NT";

namespace {

constexpr std::string_view kDepfile = "--depfile";
constexpr std::string_view kDepfileEquals = "--depfile=";

constexpr const char* kUsage =
    "Usage: ta51 [options] source [object [list]]\n"
    "\n"
    "Assembles an 8051 source into a relocatable object module and a list\n"
    "file (by default the source name with .OBJ and .LST). A name ending in\n"
    "';' takes the remaining defaults. Options start with '-' or '/' and may\n"
    "stand anywhere, in any case, for example:\n"
    "  -NOLIST -SYM -NOCASE -DEBUG -NOLOGO -DNAME[=VALUE] -MnNAME -EQU:NAME\n"
    "\n"
    "  --help           this text\n"
    "  --version        the version line\n"
    "  --depfile FILE   write a make rule naming the files the run read\n"
    "\n"
    "Exit status: 0 clean, 1 errors, 2 warnings under ZVED.\n";

// A name in a make rule: blanks, `#` and `$` escaped.
std::string MakeEscaped(const std::string& name) {
  std::string text;
  for (char c : name) {
    if (c == ' ' || c == '#') text += '\\';
    if (c == '$') text += '$';
    text += c;
  }
  return text;
}

}  // namespace

LinuxOptions TakeLinuxOptions(std::vector<std::string>& arguments) {
  LinuxOptions options;
  std::vector<std::string> kept;
  for (size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (argument.rfind("--", 0) != 0) {
      kept.push_back(argument);
    } else if (argument == "--help") {
      options.help = true;
    } else if (argument == "--version") {
      options.version = true;
    } else if (argument == kDepfile && at + 1 < arguments.size()) {
      options.depfile = arguments[++at];
    } else if (argument.rfind(kDepfileEquals, 0) == 0 && argument.size() > kDepfileEquals.size()) {
      options.depfile = argument.substr(kDepfileEquals.size());
    } else if (options.error.empty()) {
      if (argument == kDepfile || argument == kDepfileEquals) {
        options.error = "Option --depfile needs a file name";
      } else {
        options.error = "Unknown option ";
        options.error += argument;
      }
    }
  }
  arguments.swap(kept);
  return options;
}

void PrintUsage(FILE* stream) { std::fputs(kUsage, stream); }

bool WriteDepFile(const Assembler& as, const std::string& path) {
  FILE* file = std::fopen(path.c_str(), "w");
  if (file == nullptr) return false;
  std::string rule;
  for (const std::string* target : {as.opt.OBJ ? &as.ObjectName : nullptr, as.ListIsConsole ? nullptr : &as.ListName}) {
    if (target == nullptr) continue;
    if (!rule.empty()) rule += ' ';
    rule += MakeEscaped(*target);
  }
  rule += ":";
  std::unordered_set<std::string> named;
  for (const std::string& input : as.FilesRead) {
    if (!named.insert(input).second) continue;
    rule += ' ';
    rule += MakeEscaped(input);
  }
  rule += "\n";
  bool written = std::fwrite(rule.data(), 1, rule.size(), file) == rule.size();
  return std::fclose(file) == 0 && written;
}

}  // namespace ta51
