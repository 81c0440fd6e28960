#include "platform/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <vector>

namespace ta51 {

PathParts SplitPath(const std::string& path) {
  PathParts parts;
  std::string rest = path;
  if (rest.size() >= 2 && rest[1] == ':' && std::isalpha(static_cast<unsigned char>(rest[0]))) {
    parts.drive = rest.substr(0, 2);
    rest.erase(0, 2);
  }
  size_t slash = rest.find_last_of("/\\");
  if (slash != std::string::npos) {
    parts.directory = rest.substr(0, slash + 1);
    rest.erase(0, slash + 1);
  }
  size_t dot = rest.find_last_of('.');
  if (dot != std::string::npos) {
    parts.extension = rest.substr(dot);
    rest.erase(dot);
  }
  parts.name = rest;
  return parts;
}

std::string WithoutExtension(const std::string& path) {
  PathParts parts = SplitPath(path);
  return parts.drive + parts.directory + parts.name;
}

namespace {

// The path with "." and "name/.." steps and doubled separators removed, by
// the rules of std::filesystem's lexically_normal. The file system library
// is not used itself: it brings the C++ locale machinery into the program,
// which doubled its size and cost every run time to start.
std::string NormalPath(std::string_view path) {
  // A root alone keeps all its separators.
  if (path.find_first_not_of('/') == std::string_view::npos) return std::string(path);
  const bool rooted = !path.empty() && path.front() == '/';
  std::vector<std::string_view> names;
  bool trailingSeparator = false;
  size_t at = 0;
  while (at < path.size()) {
    while (at < path.size() && path[at] == '/') ++at;
    const size_t end = std::min(path.find('/', at), path.size());
    const std::string_view name = path.substr(at, end - at);
    at = end;
    if (name.empty() || name == ".") {
      // A trailing separator or a "." leaves a separator after the last name.
      if (!names.empty()) trailingSeparator = true;
    } else if (name == "..") {
      if (!names.empty() && names.back() != "..") {
        names.pop_back();
        trailingSeparator = true;
      } else if (names.empty() && rooted) {
        // ".." of the root is the root.
      } else {
        names.push_back(name);
        trailingSeparator = false;
      }
    } else {
      names.push_back(name);
      trailingSeparator = false;
    }
  }
  if (!names.empty() && names.back() == "..") trailingSeparator = false;
  if (names.empty()) return rooted ? "/" : ".";
  std::string normal = rooted ? "/" : "";
  for (size_t i = 0; i < names.size(); ++i) {
    if (i != 0) normal += '/';
    normal += names[i];
  }
  if (trailingSeparator) normal += '/';
  return normal;
}

}  // namespace

std::string FullPath(const std::string& path) {
  if (path.empty()) return path;
  if (path.front() == '/') return NormalPath(path);
  std::vector<char> directory(4096);
  while (getcwd(directory.data(), directory.size()) == nullptr) {
    if (errno != ERANGE || directory.size() >= (1u << 20)) return path;
    directory.resize(directory.size() * 2);
  }
  std::string absolute = directory.data();
  absolute += '/';
  absolute += path;
  return NormalPath(absolute);
}

bool FileExists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool ReadWholeFile(const std::string& path, std::string& text) {
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  text.clear();
  char block[1 << 16];
  size_t got;
  while ((got = std::fread(block, 1, sizeof block, file)) != 0) text.append(block, got);
  const bool failed = std::ferror(file) != 0;
  std::fclose(file);
  return !failed;
}

const char* GetEnvironment(const char* name) { return std::getenv(name); }

void StreamBuffers::Attach(FILE* stream) {
  std::setvbuf(stream, static_cast<char*>(memory_.Take(kStreamBufferSize)), _IOFBF, kStreamBufferSize);
}

FILE* CreateTemporaryFile(std::string& name, StreamBuffers* buffers) {
  char pattern[] = "./zvtmpXXXXXX";
  int descriptor = mkstemp(pattern);
  if (descriptor < 0) {
    name.clear();
    return nullptr;
  }
  FILE* file = fdopen(descriptor, "w+b");
  if (file == nullptr) {
    close(descriptor);
    unlink(pattern);
    name.clear();
    return nullptr;
  }
  name = pattern;
  if (buffers != nullptr)
    buffers->Attach(file);
  else
    std::setvbuf(file, nullptr, _IONBF, 0);  // its writer buffers whole blocks itself
  return file;
}

FILE* OpenForRewrite(const std::string& path) {
  int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor < 0) return nullptr;
  FILE* file = fdopen(descriptor, "wb");
  if (file == nullptr) close(descriptor);
  return file;
}

bool CloseRewritten(FILE* stream) {
  bool written = std::fflush(stream) == 0 && std::ferror(stream) == 0;
  const off_t end = ftello(stream);
  struct stat status {};
  const int descriptor = fileno(stream);
  // A device or a pipe has no length to cut.
  if (written && end >= 0 && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > end)
    written = ftruncate(descriptor, end) == 0;
  return std::fclose(stream) == 0 && written;
}

bool NamesOpenFile(const std::string& path, FILE* stream) {
  struct stat named {}, opened {};
  return stat(path.c_str(), &named) == 0 && fstat(fileno(stream), &opened) == 0 && named.st_dev == opened.st_dev &&
         named.st_ino == opened.st_ino;
}

std::string RunTimeText() {
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  const char* fixed = std::getenv("SOURCE_DATE_EPOCH");
  char* end = nullptr;
  long long seconds = fixed != nullptr ? std::strtoll(fixed, &end, 10) : 0;
  if (fixed != nullptr && end != fixed && *end == '\0') {
    now = static_cast<std::time_t>(seconds);
    gmtime_r(&now, &parts);
  } else {
    localtime_r(&now, &parts);
  }
  char text[32];
  std::strftime(text, sizeof text, "%a %b %e %H:%M:%S %Y", &parts);
  return std::string(text, 24);
}

}  // namespace ta51
