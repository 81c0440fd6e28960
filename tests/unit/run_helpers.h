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
    result.status = RunAssembler(arguments, Console{out.get(), err.get(), in});
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
