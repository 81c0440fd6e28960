// File names as the run shows them: the full path of a source or include is
// printed in list headers and object records, so it must be the same path
// that std::filesystem's absolute and lexically_normal give.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "platform/platform.h"

namespace ta51 {
namespace {

std::string Expected(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal().string();
}

TEST(FullPath, AgreesWithTheFileSystemLibrary) {
  const char* const paths[] = {
      "a.asm",        "./a.asm",    "sub/../a.asm",   "../a.asm",     "../../x/y.inc", "a/./b/",
      "a/b/..",       "a/b/../",    "a/..",           "a/../..",      "x/y/.",         "x//y///z",
      "/",            "//",         "/..",            "/../a",        "//lib//m.inc",  "/a/b/../../..",
      "/a/./b/./",    "/a/b/..",    "/a/b/c/../../d", "/x/.../y",     "/x/..y/.z",     "a\\b\\..\\c",
      "/tmp/./",      "..",         ".",              "./",           "/a/b/../..",    "/a/b/../../",
      "///",          "//.",        "//..",           "/./",
  };
  for (const char* path : paths) EXPECT_EQ(FullPath(path), Expected(path)) << path;
}

TEST(FullPath, LeavesAnEmptyNameAlone) { EXPECT_EQ(FullPath(""), ""); }

TEST(ReadWholeFile, ReadsEveryByteAndReportsWhatCannotBeRead) {
  const std::string name = "platform_test_whole.bin";
  std::string written;
  for (int i = 0; i < 200000; ++i) written += static_cast<char>(i * 7);  // more than one block, NULs included
  FILE* file = std::fopen(name.c_str(), "wb");
  ASSERT_NE(file, nullptr);
  std::fwrite(written.data(), 1, written.size(), file);
  std::fclose(file);
  std::string read = "left over";
  EXPECT_TRUE(ReadWholeFile(name, read));
  EXPECT_EQ(read, written);
  std::remove(name.c_str());
  EXPECT_FALSE(ReadWholeFile(name, read));
  EXPECT_FALSE(ReadWholeFile(".", read));  // a directory opens but cannot be read
}

}  // namespace
}  // namespace ta51
