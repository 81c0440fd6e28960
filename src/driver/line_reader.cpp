#include "driver/line_reader.h"
namespace ta51 {
bool FetchLine(Assembler&) { return false; }
int ProcessInclude(Assembler&) { return 0; }
}
