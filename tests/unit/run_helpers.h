// Running whole assemblies in-process, in a private directory.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "driver/entry.h"

namespace ta51::testing {

// Captures what a run prints on one console stream.
class CapturedStream {
 public:
  CapturedStream() : file_(std::tmpfile()) {}
  ~CapturedStream() { std::fclose(file_); }
  FILE* get() const { return file_; }
  std::string Text() const {
    std::fflush(file_);
    std::rewind(file_);
    std::string text;
    char block[4096];
    size_t got;
    while ((got = std::fread(block, 1, sizeof block, file_)) > 0) text.append(block, got);
    return text;
  }

 private:
  FILE* file_;
};

struct RunResult {
  int status = -1;
  std::string out;
  std::string err;
};

// A fresh directory, made current for the time of a test.
class AssemblyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = std::filesystem::current_path();
    char pattern[] = "/tmp/ta51testXXXXXX";
    directory_ = mkdtemp(pattern);
    std::filesystem::current_path(directory_);
  }
  void TearDown() override {
    std::filesystem::current_path(previous_);
    std::filesystem::remove_all(directory_);
  }

  void Write(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
  }
  std::string Read(const std::string& name) const {
    std::ifstream file(name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }
  bool Exists(const std::string& name) const { return std::filesystem::exists(name); }
  std::string Path(const std::string& name) const { return directory_ + "/" + name; }

  RunResult Run(const std::vector<std::string>& arguments, const std::string& input = {}) {
    CapturedStream out, err;
    FILE* in = std::tmpfile();
    std::fputs(input.c_str(), in);
    std::rewind(in);
    RunResult result;
    result.status = RunAssembler(arguments, Console{out.get(), err.get(), in}, RunChecks{true});
    std::fclose(in);
    result.out = out.Text();
    result.err = err.Text();
    return result;
  }

  // Assembles `text` as `name` with no banner; the object file's text.
  RunResult Assemble(const std::string& name, const std::string& text, std::vector<std::string> options = {}) {
    Write(name, text);
    std::vector<std::string> arguments = {name + ";", "/NOLOGO"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments);
  }

  // The records of the module between AD and ME, each ended by one blank.
  std::string Body(const std::string& source, const std::string& name = "s.asm") {
    RunResult run = Assemble(name, source);
    EXPECT_EQ(run.status, 0) << run.out;
    std::string object = Read(name.substr(0, name.find('.')) + ".OBJ");
    size_t start = object.find("AD8,2,L.\r\n");
    size_t end = object.rfind("ME.\r\n");
    if (start == std::string::npos || end == std::string::npos) return object;
    std::string body = object.substr(start + 10, end - start - 10);
    std::string plain;
    for (char c : body)
      if (c != '\r') plain += c == '\n' ? ' ' : c;
    return plain;
  }
  // The source reference of a field on `line` of s.asm.
  std::string Reference(int line) const {
    std::string text = Path("s*asm") + "(" + std::to_string(line) + ")";
    char length[8];
    std::snprintf(length, sizeof length, ",%04X", static_cast<unsigned>(text.size()));
    return length + text;
  }
  // The messages of the errors that assembling `source` reports, each ended by `;`.
  std::string Errors(const std::string& source, const std::string& name = "e.asm") {
    RunResult run = Assemble(name, source);
    std::string found;
    for (size_t at = run.out.find("Error: "); at != std::string::npos; at = run.out.find("Error: ", at + 1))
      found += run.out.substr(at + 7, run.out.find('\n', at) - at - 7) + ";";
    return found;
  }

  bool TemporaryFilesLeft() const {
    for (const auto& entry : std::filesystem::directory_iterator(directory_))
      if (entry.path().filename().string().rfind("zvtmp", 0) == 0) return true;
    return false;
  }

  std::string directory_;

 private:
  std::filesystem::path previous_;
};

}  // namespace ta51::testing
