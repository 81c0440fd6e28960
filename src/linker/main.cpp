#include <string>
#include <vector>

#include "linker/linker.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  return ta51::linker::RunLinker(arguments);
}
