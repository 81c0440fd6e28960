// The command line: options, file names and the dialect, then the run.
#include "driver/entry.h"

#include <strings.h>

#include <cstdio>
#include <new>

#include "core/diagnostics.h"
#include "core/option_keywords.h"
#include "driver/linux_options.h"
#include "driver/pass.h"
#include "platform/platform.h"
#include "symbols/symbols.h"

namespace ta51 {

namespace {

constexpr size_t kFileNameLimit = 260;

constexpr const char* kFixedWords[] = {"ZVED", "NOLOGO", "WX", "FT", "CL", "W8", "XL"};

bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// `-` always starts an option; `/` does unless a second `/` makes it a path.
bool IsOptionArgument(const std::string& argument) {
  if (argument.empty()) return false;
  if (argument[0] == '-') return true;
  return argument[0] == '/' && argument.find('/', 1) == std::string::npos;
}

bool ApplyFixedWord(Assembler& as, std::string_view word) {
  for (const char* fixed : kFixedWords) {
    if (!EqualsIgnoringCase(word, fixed)) continue;
    std::string upper(fixed);
    if (upper == "ZVED") ++as.ZvedCount;
    if (upper == "NOLOGO") as.NOLOGO = true;
    if (upper == "WX") as.WX = true;
    if (upper == "FT") as.Ft = true;
    if (upper == "CL") as.CL = true;
    return true;
  }
  return false;
}

void DefineCommandLineSymbol(Assembler& as, const std::string& rest) {
  SymbolDefinition definition;
  definition.value = 1;
  definition.type = T_NUMBER;
  DefineSymbol(as, rest.c_str(), definition);
}

// `/DNAME` and `/DNAME=VALUE`: a #define given on the command line. The
// name runs to the first blank, so that `/DF(x)=x+1` keeps its parameters.
void DefineCommandLineMacro(Assembler& as, std::string text) {
  size_t equals = text.find('=');
  if (equals != std::string::npos) text[equals] = ' ';
  size_t nameEnd = 0;
  while (nameEnd < text.size() && text[nameEnd] != ' ' && text[nameEnd] != '\t') ++nameEnd;
  if (nameEnd == 0) return;
  size_t bodyStart = text.find_first_not_of(" \t", nameEnd);
  std::string body = bodyStart == std::string::npos ? std::string() : text.substr(bodyStart);
  as.CommandLineDefines.emplace_back(text.substr(0, nameEnd), body);
}

void ProcessOptionArgument(Assembler& as, const std::string& argument) {
  std::string word = argument.substr(1);
  int code = FindOption(word);
  if (code != kNoOption) {
    ProcessOption(as, code);
  } else if (ApplyFixedWord(as, word)) {
  } else if (word.rfind("Mn", 0) == 0) {
    as.ModuleNameOption = word.substr(2);
  } else if (StartsWithIgnoringCase(word, "EQU:")) {
    DefineCommandLineSymbol(as, word.substr(4));
  } else if (!word.empty() && (word[0] == 'D' || word[0] == 'd')) {
    DefineCommandLineMacro(as, word.substr(1));
  } else if (StartsWithIgnoringCase(word, "INC:")) {
  } else {
    std::fprintf(as.console.out, "Unknown option %s\n", argument.c_str());
    Terminate(as, false);
  }
}

std::string CutAtSemicolon(const std::string& name, bool& hadSemicolon) {
  size_t semicolon = name.find(';');
  hadSemicolon = semicolon != std::string::npos;
  return hadSemicolon ? name.substr(0, semicolon) : name;
}

void ReadFileNames(Assembler& as, const std::vector<std::string>& arguments) {
  int counter = 1;
  for (const std::string& argument : arguments) {
    if (IsOptionArgument(argument)) continue;
    bool hadSemicolon = false;
    if (counter == 1) {
      as.SourceName = CutAtSemicolon(argument.substr(0, kFileNameLimit - 1), hadSemicolon);
      if (hadSemicolon) {
        as.ObjectName = as.ListName = WithoutExtension(as.SourceName);
        return;
      }
    } else if (counter == 2) {
      as.ObjectName = CutAtSemicolon(argument.substr(0, kFileNameLimit - 1), hadSemicolon);
      if (hadSemicolon) {
        as.ListName = WithoutExtension(as.SourceName);
        return;
      }
    } else if (counter == 3) {
      as.ListName = argument.substr(0, kFileNameLimit - 1);
    } else {
      std::fprintf(as.console.out, "Too many filenames : '%s'\n", argument.c_str());
      Terminate(as, false);
    }
    ++counter;
  }
}

// One line from standard input, cut behind its first word.
std::string ReadAnswer(Assembler& as, const std::string& prompt) {
  std::fputs(prompt.c_str(), as.console.err);
  std::fflush(as.console.err);
  char line[kFileNameLimit + 1] = {0};
  if (as.console.in == nullptr || std::fgets(line, sizeof line, as.console.in) == nullptr) return {};
  std::string text(line);
  size_t start = text.find_first_not_of(" \t\n");
  if (start == std::string::npos) return {};
  size_t end = text.find_first_of(" \t\n", start);
  return text.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

void PromptForMissingNames(Assembler& as) {
  if (as.SourceName.empty()) {
    as.SourceName = ReadAnswer(as, "Source file: [.ASM] ");
    if (as.SourceName.empty()) {
      std::fputs("No source file specified\n", as.console.out);
      Terminate(as, false);
    }
  }
  std::string stem = WithoutExtension(as.SourceName);
  if (as.ObjectName.empty()) {
    as.ObjectName = ReadAnswer(as, "Object file: [" + stem + ".OBJ] ");
    if (as.ObjectName.empty()) as.ObjectName = stem;
  }
  if (as.ListName.empty()) {
    as.ListName = ReadAnswer(as, "List file: [" + stem + ".LST] ");
    if (as.ListName.empty()) as.ListName = stem;
  }
}

void AddDefaultExtension(std::string& name, const char* extension) {
  if (name.size() + 1 + std::string_view(extension).size() > kFileNameLimit) return;
  std::string current = SplitPath(name).extension;
  if (current.size() >= 1 && current.size() <= 4 && current[0] == '.') return;
  name += '.';
  name += extension;
}

void SettleFileNames(Assembler& as, const std::vector<std::string>& arguments) {
  ReadFileNames(as, arguments);
  PromptForMissingNames(as);
  as.PercentDialect = EqualsIgnoringCase(SplitPath(as.SourceName).extension, ".a51");
  AddDefaultExtension(as.SourceName, "asm");
  AddDefaultExtension(as.ObjectName, "OBJ");
  AddDefaultExtension(as.ListName, "LST");
  if (EqualsIgnoringCase(as.SourceName, as.ObjectName) || EqualsIgnoringCase(as.SourceName, as.ListName)) {
    std::fputs("Source filename duplicated as output filename\n", as.console.out);
    Terminate(as, false);
  }
  as.ListIsConsole = EqualsIgnoringCase(as.ListName, "CON.LST");
}

bool RunCommandLine(Assembler& as, const std::vector<std::string>& arguments) {
  as.CommandLinePhase = true;
  for (const std::string& argument : arguments)
    if (IsOptionArgument(argument)) ProcessOptionArgument(as, argument);
  if (!as.NOLOGO) std::fprintf(as.console.out, "%s\n", kBanner);
  SettleFileNames(as, arguments);
  as.ErrorCount = 0;
  as.CommandLinePhase = false;
  as.PageWidth = 80;
  as.PageLength = 66;
  return AssembleFile(as);
}

// A failed run leaves no object file behind, whatever stood there before.
void RemoveObjectOfFailedRun(Assembler& as) {
  // ObjectStream is an alias of the body file or of the final object stream.
  if (as.FinalObjectStream != nullptr) std::fclose(as.FinalObjectStream);
  as.FinalObjectStream = as.ObjectStream = nullptr;
  RemoveTemporaryFiles(as);
  if (!as.ObjectName.empty()) std::remove(as.ObjectName.c_str());
}

}  // namespace

int RunAssembler(const std::vector<std::string>& commandLine, Console console, RunChecks checks) {
  std::vector<std::string> arguments = commandLine;
  const LinuxOptions extras = TakeLinuxOptions(arguments);
  if (!extras.error.empty()) {
    std::fprintf(console.out, "%s\n", extras.error.c_str());
    return 1;
  }
  if (extras.help || extras.version) {
    if (extras.help) PrintUsage(console.out);
    else std::fprintf(console.out, "%s\n", kBanner);
    std::fflush(console.out);
    return 0;
  }
  Assembler as(console);
  as.Reuse.checkOnly = checks.reusedInstructions;
  bool success = false;
  try {
    try {
      success = RunCommandLine(as, arguments);
    } catch (const std::bad_alloc&) {
      ReportError(as, 24, false);
    }
  } catch (const RunTerminated& terminated) {
    success = terminated.success;
  }
  if (!success && as.AssemblyStarted) RemoveObjectOfFailedRun(as);
  RemoveTemporaryFiles(as);
  if (success && !extras.depfile.empty() && !WriteDepFile(as, extras.depfile)) {
    std::fprintf(console.out, "Cannot write dependency file %s\n", extras.depfile.c_str());
    success = false;
  }
  std::fflush(console.out);
  return ExitStatus(as, success);
}

}  // namespace ta51
