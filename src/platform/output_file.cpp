#include "platform/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace ta51 {

bool PendingOutput::Open(const std::string& path) {
  Discard();
  path_ = path;
  std::string pattern = path + ".tmpXXXXXX";
  int descriptor = mkstemp(pattern.data());
  if (descriptor < 0) return false;
  // mkstemp makes the file private; the output gets the usual permissions.
  mode_t mask = umask(0);
  umask(mask);
  fchmod(descriptor, 0666 & ~mask);
  stream_ = fdopen(descriptor, "wb");
  if (stream_ == nullptr) {
    close(descriptor);
    unlink(pattern.c_str());
    return false;
  }
  temporary_ = pattern;
  return true;
}

bool PendingOutput::Commit() {
  if (stream_ == nullptr) return false;
  bool written = std::ferror(stream_) == 0;
  written = std::fclose(stream_) == 0 && written;
  stream_ = nullptr;
  if (written && std::rename(temporary_.c_str(), path_.c_str()) == 0) {
    temporary_.clear();
    return true;
  }
  std::remove(temporary_.c_str());
  temporary_.clear();
  return false;
}

void PendingOutput::Discard() {
  if (stream_ != nullptr) std::fclose(stream_);
  stream_ = nullptr;
  if (!temporary_.empty()) std::remove(temporary_.c_str());
  temporary_.clear();
}

}  // namespace ta51
