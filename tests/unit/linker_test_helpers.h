// Assembling and linking in-process, in a private directory, for the tests
// of tl51.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "driver/entry.h"
#include "linker/linker.h"
#include "run_helpers.h"

namespace ta51::testing {

inline const std::filesystem::path kSourceRoot = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path();

inline bool ToolInstalled(const std::string& tool) {
  return std::system(("command -v " + tool + " >/dev/null 2>&1").c_str()) == 0;
}

// A module written by hand: MB, AD, the records given, ME; each ended by
// ".\r\n".
inline std::string Obj(const std::string& name, const std::vector<std::string>& records) {
  char head[32];
  std::snprintf(head, sizeof head, "MB8051,%02X\"", static_cast<unsigned>(name.size() + 2));
  std::string text = head + name + "\".\r\nAD8,2,L.\r\n";
  for (const std::string& record : records) text += record + ".\r\n";
  return text + "ME.\r\n";
}

class LinkTest : public AssemblyTest {
 protected:
  // Assembles each source; fails the test on any error.
  void AssembleAll(const std::vector<std::string>& sources) {
    for (const std::string& source : sources) {
      RunResult run = Run({source + ";", "/NOLOGO"});
      ASSERT_EQ(run.status, 0) << source << ":\n" << run.out;
    }
  }
  // Writes `text` as source `name` and assembles it.
  void Source(const std::string& name, const std::string& text) {
    Write(name, text);
    AssembleAll({name});
  }

  RunResult Link(const std::vector<std::string>& arguments) {
    CapturedStream out, err;
    RunResult result;
    result.status = linker::RunLinker(arguments, linker::LinkConsole{out.get(), err.get()});
    result.out = out.Text();
    result.err = err.Text();
    return result;
  }

  // Loaded bytes of an Intel HEX file, by address; checksums checked.
  std::map<uint32_t, uint8_t> HexImage(const std::string& name) {
    std::map<uint32_t, uint8_t> image;
    std::istringstream lines(Read(name));
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      EXPECT_EQ(line[0], ':') << line;
      std::vector<uint8_t> bytes;
      for (size_t at = 1; at + 1 < line.size(); at += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(line.substr(at, 2), nullptr, 16)));
      uint8_t sum = 0;
      for (uint8_t byte : bytes) sum = static_cast<uint8_t>(sum + byte);
      EXPECT_EQ(sum, 0) << "checksum of " << line;
      if (bytes.size() < 5 || bytes[3] != 0) continue;
      uint32_t address = static_cast<uint32_t>(bytes[1] << 8 | bytes[2]);
      for (size_t i = 0; i < bytes[0]; ++i) image[address + static_cast<uint32_t>(i)] = bytes[4 + i];
    }
    return image;
  }

  // The publics of a map, by name.
  std::map<std::string, uint32_t> MapPublics(const std::string& name) {
    std::map<std::string, uint32_t> publics;
    std::istringstream lines(Read(name));
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
      if (line == "Public symbols, by name") inside = true;
      else if (line.empty() || line[0] != ' ') inside = inside && line.empty() && publics.empty();
      else if (inside) {
        std::istringstream fields(line);
        std::string symbol, value;
        fields >> symbol >> value;
        publics[symbol] = static_cast<uint32_t>(std::stoul(value, nullptr, 16));
      }
    }
    return publics;
  }

  // The segments of a map: name (or "(absolute)") and start, in map order.
  std::map<std::string, uint32_t> MapSegments(const std::string& name) {
    std::map<std::string, uint32_t> segments;
    std::istringstream lines(Read(name));
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
      if (line == "Segments, by space and address") inside = true;
      else if (line.empty()) inside = inside && segments.empty();
      else if (inside && line.rfind("  Space", 0) != 0) {
        std::istringstream fields(line);
        std::string space, start, end, size, segment;
        fields >> space >> start >> end >> size >> segment;
        segments[segment] = static_cast<uint32_t>(std::stoul(start, nullptr, 16));
      }
    }
    return segments;
  }

  void CopyIn(const std::filesystem::path& from) {
    std::filesystem::copy_file(from, std::filesystem::path(directory_) / from.filename(),
                               std::filesystem::copy_options::overwrite_existing);
  }
};

}  // namespace ta51::testing
