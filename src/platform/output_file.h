// An output file written under a temporary name beside its final one and
// renamed into place only when it is complete, so that a failed run never
// leaves a partial or stale file under the final name.
#pragma once

#include <cstdio>
#include <string>

namespace ta51 {

class PendingOutput {
 public:
  PendingOutput() = default;
  PendingOutput(const PendingOutput&) = delete;
  PendingOutput& operator=(const PendingOutput&) = delete;
  ~PendingOutput() { Discard(); }

  // Creates the temporary file in the directory of `path`; false on failure.
  bool Open(const std::string& path);
  FILE* Stream() const { return stream_; }
  // Flushes, closes and renames into place; false if any of it failed, and
  // then nothing is left.
  bool Commit();
  // Closes and removes the temporary file.
  void Discard();

 private:
  std::string path_;
  std::string temporary_;
  FILE* stream_ = nullptr;
};

}  // namespace ta51
