// Memory for large tables read in random order. It comes from the system in
// blocks aligned to 2 MiB and offered for huge pages, so that where the system
// grants them a table costs one page fault and one address translation per
// 2 MiB instead of one per 4 KiB; elsewhere it is ordinary memory.
#pragma once

#include <cstddef>
#include <vector>

namespace ta51 {

// Zeroed memory of at least `bytes`; throws std::bad_alloc when there is none.
// `mapped` receives the size to hand back to ReleaseLargeBlock.
void* TakeLargeBlock(size_t bytes, size_t& mapped);
void ReleaseLargeBlock(void* block, size_t mapped);

// Pieces carved one after the other from large blocks, all given back at once.
class LargeBlockArena {
 public:
  LargeBlockArena() = default;
  LargeBlockArena(const LargeBlockArena&) = delete;
  LargeBlockArena& operator=(const LargeBlockArena&) = delete;
  ~LargeBlockArena() { Release(); }

  // Zeroed, aligned to 64 bytes.
  void* Take(size_t bytes);
  void Release();

 private:
  struct Block {
    char* base;
    size_t mapped;
  };
  std::vector<Block> blocks_;
  size_t used_ = 0;  // in the last block
};

}  // namespace ta51
