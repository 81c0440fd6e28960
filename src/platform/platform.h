// The services of the operating system that a run uses: file names, temporary
// files, the environment and the time.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "platform/large_blocks.h"

namespace ta51 {

// Buffer of the output streams: large enough that a run writes to the
// operating system in few calls.
constexpr size_t kStreamBufferSize = 1 << 16;

// The buffers of a run's streams. The C library takes the size of a buffer
// only together with the buffer itself (given none, it picks a page), so the
// run hands each stream one of its own, from the run's large blocks: there
// they cost no page faults of their own. They live until the run ends, after
// the streams are closed.
class StreamBuffers {
 public:
  explicit StreamBuffers(LargeBlockArena& memory) : memory_(memory) {}
  void Attach(FILE* stream);

 private:
  LargeBlockArena& memory_;
};

struct PathParts {
  std::string drive;      // "C:" or empty
  std::string directory;  // with its trailing separator
  std::string name;
  std::string extension;  // with its leading point, or empty
};

// Splits at `/` or `\`, with an optional drive letter and colon in front.
PathParts SplitPath(const std::string& path);
// Drive, directory and name joined: the path without its extension.
std::string WithoutExtension(const std::string& path);
// The absolute form of a path; the path itself if that cannot be made.
std::string FullPath(const std::string& path);
bool FileExists(const std::string& path);
// The whole of a file in `text`; false if it cannot be opened or read.
bool ReadWholeFile(const std::string& path, std::string& text);
// An environment variable, or nullptr.
const char* GetEnvironment(const char* name);
// Makes a unique file "zvtmpXXXXXX" in the current directory and opens it
// for reading and writing. Returns nullptr and leaves `name` empty on failure.
FILE* CreateTemporaryFile(std::string& name, StreamBuffers* buffers);
// Opens `path` for writing from its start, creating it if need be, without
// cutting an existing file short: a run usually replaces a file of about the
// same size, and a file system that frees the blocks of a truncated file at
// once (and may discard them on the device) spends longer on that than a
// short run takes. CloseRewritten cuts the file where the writing ended.
FILE* OpenForRewrite(const std::string& path);
// Flushes `stream`, cuts a regular file at the position written last, and
// closes it; false if any of that failed.
bool CloseRewritten(FILE* stream);
// Whether `path` names the file open as `stream`: the same device and file
// number, whatever the spelling of the path or the links on the way.
bool NamesOpenFile(const std::string& path, FILE* stream);
// The time of the run in the 24 characters of the ctime form. The variable
// SOURCE_DATE_EPOCH, when set, fixes it, so that listings can be reproduced.
std::string RunTimeText();

}  // namespace ta51
