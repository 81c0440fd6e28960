#include "platform/large_blocks.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

namespace ta51 {

namespace {

constexpr size_t kHugePage = size_t{2} << 20;
constexpr size_t kPieceAlignment = 64;

size_t RoundUp(size_t value, size_t step) { return (value + step - 1) / step * step; }

}  // namespace

void* TakeLargeBlock(size_t bytes, size_t& mapped) {
  mapped = RoundUp(bytes == 0 ? 1 : bytes, kHugePage);
  // Mapped with a huge page to spare, then trimmed to an aligned block.
  const size_t reserved = mapped + kHugePage;
  void* start = mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (start == MAP_FAILED) throw std::bad_alloc();
  const auto first = reinterpret_cast<uintptr_t>(start);
  const uintptr_t aligned = RoundUp(first, kHugePage);
  if (aligned != first) munmap(start, aligned - first);
  const size_t tail = reserved - (aligned - first) - mapped;
  if (tail != 0) munmap(reinterpret_cast<void*>(aligned + mapped), tail);
  auto* block = reinterpret_cast<void*>(aligned);
#ifdef MADV_HUGEPAGE
  madvise(block, mapped, MADV_HUGEPAGE);  // a request: refused, the pages stay small
#endif
  return block;
}

void ReleaseLargeBlock(void* block, size_t mapped) {
  if (block != nullptr) munmap(block, mapped);
}

void* LargeBlockArena::Take(size_t bytes) {
  bytes = RoundUp(bytes == 0 ? 1 : bytes, kPieceAlignment);
  if (blocks_.empty() || used_ + bytes > blocks_.back().mapped) {
    size_t mapped = 0;
    char* base = static_cast<char*>(TakeLargeBlock(bytes, mapped));
    blocks_.push_back(Block{base, mapped});
    used_ = 0;
  }
  char* piece = blocks_.back().base + used_;
  used_ += bytes;
  return piece;
}

void LargeBlockArena::Release() {
  for (const Block& block : blocks_) ReleaseLargeBlock(block.base, block.mapped);
  blocks_.clear();
  used_ = 0;
}

}  // namespace ta51
