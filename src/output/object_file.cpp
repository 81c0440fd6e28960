#include "output/object_file.h"
#include <cstdarg>
namespace ta51 {
int WriteObjectRecord(Assembler&, const char*, ...) { return 0; }
void WriteCheckedRecord(Assembler&, const char*, ...) {}
void WriteLoadItem(Assembler&, const uint8_t*, int, bool, bool, bool, const OperandSlot*) {}
void EmitInstruction(Assembler&) {}
void WriteSegmentSwitch(Assembler&) {}
void WriteModuleHead(Assembler&) {}
void WriteSegmentRecords(Assembler&) {}
void WriteSymbolRecords(Assembler&) {}
}
