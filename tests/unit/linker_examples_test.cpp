// Every example links, and runs in the s51 simulator to the state that its
// own comments state. The checks stand after END, one per line:
//   ; s51: link A.asm B.asm L.asm=LIB.LIB   the modules (L.asm goes into LIB.LIB)
//   ; s51: stop NAME|HEX                     run until the address
//   ; s51: iram|xram|sfr ADDR [mask M] BYTES what memory holds there
//   ; s51: serial "TEXT"                     what the serial port sent
// An address or byte is hexadecimal, or a public of the map, optionally
// with +HEX or -HEX. The test skips when s51 is not installed.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>

#include "linker_test_helpers.h"

namespace ta51::testing {
namespace {

const std::filesystem::path kExamples = kSourceRoot / "examples";

struct MemoryCheck {
  std::string memory;  // iram, xram or sfr
  std::string address;
  uint8_t mask = 0xFF;
  std::vector<std::string> bytes;
};

struct ExamplePlan {
  std::vector<std::string> modules;                     // given to tl51
  std::vector<std::pair<std::string, std::string>> libraryModules;  // source, library
  std::string stop;
  std::string serial;
  std::vector<MemoryCheck> checks;
};

std::string Unescape(const std::string& text) {
  std::string plain;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\\' && at + 1 < text.size()) {
      char c = text[++at];
      plain += c == 'r' ? '\r' : c == 'n' ? '\n' : c;
    } else {
      plain += text[at];
    }
  }
  return plain;
}

ExamplePlan ReadPlan(const std::filesystem::path& source) {
  ExamplePlan plan;
  std::ifstream in(source);
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("; s51: ", 0) != 0) continue;
    std::istringstream words(line.substr(7));
    std::string kind;
    words >> kind;
    if (kind == "link") {
      for (std::string name; words >> name;) {
        size_t equals = name.find('=');
        if (equals == std::string::npos) plan.modules.push_back(name);
        else plan.libraryModules.emplace_back(name.substr(0, equals), name.substr(equals + 1));
      }
    } else if (kind == "stop") {
      words >> plan.stop;
    } else if (kind == "serial") {
      size_t open = line.find('"'), close = line.rfind('"');
      plan.serial = Unescape(line.substr(open + 1, close - open - 1));
    } else {
      MemoryCheck check{kind, "", 0xFF, {}};
      words >> check.address;
      for (std::string word; words >> word;) {
        if (word == "mask") {
          words >> word;
          check.mask = static_cast<uint8_t>(std::stoul(word, nullptr, 16));
        } else {
          check.bytes.push_back(word);
        }
      }
      plan.checks.push_back(check);
    }
  }
  if (plan.modules.empty() && !plan.stop.empty()) plan.modules.push_back(source.filename().string());
  return plan;
}

class ExampleTest : public LinkTest {
 protected:
  // A number, or a public of the map with an optional +HEX or -HEX.
  uint32_t Value(const std::string& text) {
    size_t sign = text.find_first_of("+-", 1);
    std::string name = text.substr(0, sign);
    uint32_t value = 0;
    if (publics_.count(name) != 0) value = publics_[name];
    else value = static_cast<uint32_t>(std::stoul(name, nullptr, 16));
    if (sign != std::string::npos) {
      uint32_t offset = static_cast<uint32_t>(std::stoul(text.substr(sign + 1), nullptr, 16));
      value = text[sign] == '+' ? value + offset : value - offset;
    }
    return value;
  }

  void RunExample(const std::filesystem::path& source) {
    ExamplePlan plan = ReadPlan(source);
    ASSERT_FALSE(plan.stop.empty()) << source;
    std::vector<std::string> sources = plan.modules;
    for (const auto& [module, library] : plan.libraryModules) sources.push_back(module);
    for (const std::string& name : sources) CopyIn(source.parent_path() / name);
    AssembleAll(sources);
    for (const auto& [module, library] : plan.libraryModules)
      std::ofstream(library, std::ios::binary | std::ios::app) << Read(module.substr(0, module.find('.')) + ".OBJ");
    std::vector<std::string> arguments = {"-o", "prog.hex"};
    for (const std::string& module : plan.modules) arguments.push_back(module.substr(0, module.find('.')) + ".OBJ");
    RunResult link = Link(arguments);
    ASSERT_EQ(link.status, 0) << link.err;
    publics_ = MapPublics("prog.map");

    std::string commands = "break 0x" + HexWord(Value(plan.stop)) + "\nrun\n";
    for (const MemoryCheck& check : plan.checks) {
      uint32_t address = Value(check.address);
      const char* dump = check.memory == "iram" ? "di" : check.memory == "xram" ? "dx" : "ds";
      commands += std::string(dump) + " 0x" + HexWord(address) + " 0x" + HexWord(address + static_cast<uint32_t>(check.bytes.size()) - 1) + "\n";
    }
    Write("commands", commands + "quit\n");
    std::string command = "timeout 30 s51 -t 8051 -b -S out=serial.txt prog.hex <commands >s51.txt 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << Read("s51.txt");
    std::string output = Read("s51.txt");
    ASSERT_NE(output.find("Breakpoint"), std::string::npos) << output;
    for (const MemoryCheck& check : plan.checks) Compare(check, output);
    if (!plan.serial.empty()) {
      EXPECT_EQ(Read("serial.txt"), plan.serial);
    }
  }

  static std::string HexWord(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%04x", value);
    return text;
  }

  // s51 prints a dump as "0xADDR b1 b2 ...", two digits of address for
  // internal RAM and SFRs, four for external RAM.
  void Compare(const MemoryCheck& check, const std::string& output) {
    uint32_t address = Value(check.address);
    char prefix[16];
    std::snprintf(prefix, sizeof prefix, check.memory == "xram" ? "\n0x%04x " : "\n0x%02x ", address);
    size_t at = output.find(prefix);
    ASSERT_NE(at, std::string::npos) << check.memory << " " << check.address << " not dumped:\n" << output;
    std::istringstream bytes(output.substr(at + std::strlen(prefix)));
    for (const std::string& expected : check.bytes) {
      std::string got;
      bytes >> got;
      uint32_t value = static_cast<uint32_t>(std::stoul(got, nullptr, 16));
      EXPECT_EQ(value & check.mask, Value(expected) & check.mask)
          << check.memory << " " << check.address << ": " << got << " for " << expected;
    }
  }

  std::map<std::string, uint32_t> publics_;
};

std::vector<std::filesystem::path> CheckedExamples() {
  std::vector<std::filesystem::path> checked;
  for (const std::filesystem::path& dir : {kExamples, kExamples / "split"})
    for (const auto& entry : std::filesystem::directory_iterator(dir))
      if (entry.path().extension() == ".asm" && !ReadPlan(entry.path()).stop.empty()) checked.push_back(entry.path());
  std::sort(checked.begin(), checked.end());
  return checked;
}

TEST_F(ExampleTest, EveryExampleIsLinkedByAChecked) {
  std::set<std::string> covered;
  for (const std::filesystem::path& example : CheckedExamples()) {
    ExamplePlan plan = ReadPlan(example);
    for (const std::string& module : plan.modules) covered.insert((example.parent_path() / module).string());
    for (const auto& [module, library] : plan.libraryModules) covered.insert((example.parent_path() / module).string());
  }
  for (const std::filesystem::path& dir : {kExamples, kExamples / "split"})
    for (const auto& entry : std::filesystem::directory_iterator(dir))
      if (entry.path().extension() == ".asm") {
        EXPECT_EQ(covered.count(entry.path().string()), 1u) << entry.path();
      }
}

TEST_F(ExampleTest, EachRunsToTheStateItStates) {
  if (!ToolInstalled("s51")) GTEST_SKIP() << "s51 (sdcc-ucsim) is not installed";
  for (const std::filesystem::path& example : CheckedExamples()) {
    SCOPED_TRACE(example.string());
    for (const auto& entry : std::filesystem::directory_iterator(directory_)) std::filesystem::remove_all(entry);
    publics_.clear();
    RunExample(example);
  }
}

}  // namespace
}  // namespace ta51::testing
