// File names as the run shows them: the full path of a source or include is
// printed in list headers and object records, so it must be the same path
// that std::filesystem's absolute and lexically_normal give.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/large_blocks.h"
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

// Pieces of the arena must be zeroed, aligned for any entry, and apart from
// one another, a piece larger than a block included; after Release the
// arena serves again.
TEST(LargeBlockArena, GivesZeroedSeparatePieces) {
  LargeBlockArena arena;
  for (int round = 0; round < 2; ++round) {
    const size_t sizes[] = {1, 100, 4096, 700000, size_t{5} << 20, 64, 3};
    std::vector<std::pair<unsigned char*, size_t>> pieces;
    for (size_t size : sizes) {
      auto* piece = static_cast<unsigned char*>(arena.Take(size));
      ASSERT_NE(piece, nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(piece) % 64, 0u);
      for (size_t at = 0; at < size; at += 997) ASSERT_EQ(piece[at], 0) << size;
      std::memset(piece, static_cast<int>(pieces.size() + 1), size);
      pieces.emplace_back(piece, size);
    }
    for (size_t index = 0; index < pieces.size(); ++index) {
      const auto [piece, size] = pieces[index];
      EXPECT_EQ(piece[0], index + 1);
      EXPECT_EQ(piece[size - 1], index + 1);
    }
    arena.Release();
  }
}

TEST(LargeBlock, IsAlignedForHugePagesAndZeroed) {
  size_t mapped = 0;
  auto* block = static_cast<unsigned char*>(TakeLargeBlock(size_t{3} << 20, mapped));
  EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % (size_t{2} << 20), 0u);
  EXPECT_GE(mapped, size_t{3} << 20);
  EXPECT_EQ(block[0], 0);
  EXPECT_EQ(block[mapped - 1], 0);
  ReleaseLargeBlock(block, mapped);
}

}  // namespace
}  // namespace ta51
