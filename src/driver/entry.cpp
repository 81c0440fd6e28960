#include "driver/entry.h"
namespace ta51 {
int RunAssembler(const std::vector<std::string>&, Console) { return 0; }
}
