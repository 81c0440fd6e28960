#include "platform/platform.h"

#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <ctime>
#include <filesystem>

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

std::string FullPath(const std::string& path) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) return path;
  return absolute.lexically_normal().string();
}

bool FileExists(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

const char* GetEnvironment(const char* name) { return std::getenv(name); }

void StreamBuffers::Attach(FILE* stream) {
  buffers_.push_back(std::make_unique_for_overwrite<char[]>(kStreamBufferSize));
  std::setvbuf(stream, buffers_.back().get(), _IOFBF, kStreamBufferSize);
}

FILE* CreateTemporaryFile(std::string& name, StreamBuffers& buffers) {
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
  buffers.Attach(file);
  return file;
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
