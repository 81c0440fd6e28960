// One run of tl51: the command line, the stages of the link, the outputs.
#include <algorithm>
#include <new>

#include "linker/image_output.h"
#include "linker/linker.h"
#include "linker/map_file.h"
#include "platform/output_file.h"
#include "platform/platform.h"
#include "symbols/expression_text.h"

namespace ta51::linker {

namespace {

constexpr const char* kVersion = "tl51 1.0, the linker and locator for ta51 object modules\n";

constexpr const char* kUsage =
    "usage: tl51 [options] FILE.OBJ|FILE.LIB ...\n"
    "  -o FILE           output file (default: the first module's name with .hex)\n"
    "  --bin             a raw binary of code memory instead of Intel HEX\n"
    "  --fill BYTE       gap filler of --bin, hexadecimal (default FF)\n"
    "  --map FILE        map file (default: the output's name with .map)\n"
    "  --no-map          no map file\n"
    "  --code LO-HI      code addresses open to relocatable segments (0000-FFFF)\n"
    "  --xdata LO-HI     external data addresses likewise (0000-FFFF)\n"
    "  --data LO-HI      directly addressed RAM likewise (08-7F)\n"
    "  --idata LO-HI     indirectly addressed RAM likewise (08-FF)\n"
    "  -L DIR            a directory searched for libraries named by INCLUDELIB\n"
    "  -q                no summary line\n"
    "  --help, --version\n";

enum class Opt : uint8_t { Output, Binary, Fill, Map, NoMap, Code, Xdata, Data, Idata, LibraryDir, Quiet, Help, Version };

struct OptionRow {
  std::string_view spelling;
  Opt option;
  bool takesValue;
};

constexpr OptionRow kOptions[] = {
    {"-o", Opt::Output, true},      {"--bin", Opt::Binary, false},   {"--fill", Opt::Fill, true},
    {"--map", Opt::Map, true},      {"--no-map", Opt::NoMap, false}, {"--code", Opt::Code, true},
    {"--xdata", Opt::Xdata, true},  {"--data", Opt::Data, true},     {"--idata", Opt::Idata, true},
    {"-L", Opt::LibraryDir, true},  {"-q", Opt::Quiet, false},       {"--help", Opt::Help, false},
    {"--version", Opt::Version, false},
};

// The highest address each --space option may give, by space.
constexpr uint32_t kWindowLimits[kSpaceCount] = {0x10000, 0x10000, 0x80, 0x100, 0x80};

enum class Parsed { Run, Done, Bad };

bool ParseHex(std::string_view text, uint32_t& value) {
  if (text.empty() || text.size() > 8) return false;
  value = 0;
  for (char c : text) {
    int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
    if (digit < 0) return false;
    value = value << 4 | static_cast<uint32_t>(digit);
  }
  return true;
}

class CommandLine {
 public:
  CommandLine(Linker& linker, const std::vector<std::string>& arguments) : linker_(linker), arguments_(arguments) {}

  Parsed Parse() {
    LinkOptions& options = linker_.options;
    for (size_t at = 0; at < arguments_.size(); ++at) {
      const std::string& argument = arguments_[at];
      if (argument.size() < 2 || argument[0] != '-') {
        options.inputs.push_back(argument);
        continue;
      }
      const OptionRow* row = nullptr;
      std::string value;
      bool hasValue = false;
      for (const OptionRow& candidate : kOptions) {
        if (argument == candidate.spelling) row = &candidate;
        else if (candidate.takesValue && candidate.spelling == "-L" && argument.rfind("-L", 0) == 0)
          row = &candidate, value = argument.substr(2), hasValue = true;
        else if (candidate.takesValue && argument.rfind(std::string(candidate.spelling) + "=", 0) == 0)
          row = &candidate, value = argument.substr(candidate.spelling.size() + 1), hasValue = true;
        if (row != nullptr) break;
      }
      if (row == nullptr) return Bad(Msg::UnknownOption, {argument});
      if (row->takesValue && !hasValue) {
        if (at + 1 >= arguments_.size()) return Bad(Msg::MissingValue, {argument});
        value = arguments_[++at];
      }
      Parsed result = Apply(row->option, argument, value);
      if (result != Parsed::Run) return result;
    }
    return Settle();
  }

 private:
  Parsed Bad(Msg id, std::initializer_list<std::string_view> details) {
    std::fprintf(linker_.console.err, "tl51: Error: %s\n", FormatMessage(id, details).c_str());
    std::fputs("tl51 --help lists the options\n", linker_.console.err);
    return Parsed::Bad;
  }

  Parsed Apply(Opt option, const std::string& argument, const std::string& value) {
    LinkOptions& options = linker_.options;
    switch (option) {
      case Opt::Output: options.output = value; break;
      case Opt::Binary: options.binary = true; break;
      case Opt::Map: options.map = value, options.noMap = false; break;
      case Opt::NoMap: options.noMap = true; break;
      case Opt::LibraryDir: options.libraryDirs.push_back(value); break;
      case Opt::Quiet: options.quiet = true; break;
      case Opt::Help: std::fputs(kUsage, linker_.console.out); return Parsed::Done;
      case Opt::Version: std::fputs(kVersion, linker_.console.out); return Parsed::Done;
      case Opt::Fill: {
        uint32_t fill = 0;
        if (!ParseHex(value, fill) || fill > 0xFF) return Bad(Msg::BadFill, {value});
        options.fill = static_cast<uint8_t>(fill);
        break;
      }
      case Opt::Code: case Opt::Xdata: case Opt::Data: case Opt::Idata: {
        int space = option == Opt::Code ? 0 : option == Opt::Xdata ? 1 : option == Opt::Data ? 2 : 3;
        uint32_t low = 0, high = 0;
        size_t dash = value.find('-');
        uint32_t limit = kWindowLimits[space];
        if (dash == std::string::npos || !ParseHex(std::string_view(value).substr(0, dash), low) ||
            !ParseHex(std::string_view(value).substr(dash + 1), high) || low > high || high >= limit)
          return Bad(Msg::BadRange, {argument, std::string("00-").append(HexText(limit - 1)), value});
        options.windows[space] = {low, high + 1};
        break;
      }
    }
    return Parsed::Run;
  }

  Parsed Settle() {
    LinkOptions& options = linker_.options;
    if (options.inputs.empty()) return Bad(Msg::NoInput, {});
    if (options.output.empty()) options.output = WithoutExtension(options.inputs.front()) + (options.binary ? ".bin" : ".hex");
    if (options.map.empty()) options.map = WithoutExtension(options.output) + ".map";
    for (const std::string& input : options.inputs) {
      std::string path = FullPath(input);
      if (path == FullPath(options.output)) return Bad(Msg::OutputIsInput, {options.output});
      if (!options.noMap && path == FullPath(options.map)) return Bad(Msg::OutputIsInput, {options.map});
    }
    return Parsed::Run;
  }

  Linker& linker_;
  const std::vector<std::string>& arguments_;
};

bool IsLibraryName(const std::string& path) {
  std::string extension = SplitPath(path).extension;
  std::transform(extension.begin(), extension.end(), extension.begin(), [](unsigned char c) { return std::toupper(c); });
  return extension == ".LIB";
}

bool Link(Linker& linker) {
  for (const std::string& input : linker.options.inputs)
    if (!ReadInputFile(linker, input, IsLibraryName(input))) linker.Report(input, Msg::CannotOpen, {input});
  if (linker.errorCount != 0) return false;
  SelectModules(linker);
  if (linker.errorCount != 0) return false;
  PlaceSegments(linker);
  if (linker.errorCount != 0) return false;
  ResolvePublics(linker);
  LoadCode(linker);
  ReportUnresolved(linker);
  return linker.errorCount == 0 && WriteOutputs(linker);
}

}  // namespace

void Linker::Report(std::string_view where, const std::string& text) {
  ++errorCount;
  std::fprintf(console.err, "%.*s: Error: %s\n", static_cast<int>(where.size()), where.data(), text.c_str());
}

bool WriteOutputs(Linker& linker) {
  const LinkOptions& options = linker.options;
  PendingOutput image, map;
  if (!image.Open(options.output)) {
    linker.Report(options.output, Msg::CannotWrite, {options.output});
    return false;
  }
  if (options.binary)
    WriteBinary(image.Stream(), linker.image, linker.imageOwner, options.fill);
  else
    WriteIntelHex(image.Stream(), linker.image, linker.imageOwner);
  if (!options.noMap) {
    if (!map.Open(options.map)) {
      linker.Report(options.map, Msg::CannotWrite, {options.map});
      return false;
    }
    WriteMap(linker, map.Stream(), options.output);
  }
  if (!image.Commit()) {
    linker.Report(options.output, Msg::CannotWrite, {options.output});
    return false;
  }
  if (!options.noMap && !map.Commit()) {
    linker.Report(options.map, Msg::CannotWrite, {options.map});
    std::remove(options.output.c_str());
    return false;
  }
  return true;
}

int RunLinker(const std::vector<std::string>& arguments, LinkConsole console) {
  Linker linker(console);
  Parsed parsed = CommandLine(linker, arguments).Parse();
  if (parsed != Parsed::Run) return parsed == Parsed::Done ? 0 : 2;
  bool linked = false;
  try {
    linked = Link(linker);
  } catch (const std::bad_alloc&) {
    linker.Report("tl51", Msg::OutOfMemory, {});
  }
  if (!linked) {
    // A stale image of an earlier link must not pass for this one.
    std::remove(linker.options.output.c_str());
    if (!linker.options.noMap) std::remove(linker.options.map.c_str());
    std::fflush(console.err);
    return 1;
  }
  if (!linker.options.quiet)
    std::fprintf(console.out, "%s: %u bytes of code%s%s\n", linker.options.output.c_str(), linker.codeBytes,
                 linker.options.noMap ? "" : ", map in ", linker.options.noMap ? "" : linker.options.map.c_str());
  std::fflush(console.out);
  return 0;
}

}  // namespace ta51::linker
