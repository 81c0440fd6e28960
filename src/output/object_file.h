// The object module: records, load items and the head of the module.
#pragma once

#include <cstdint>

#include "core/assembler.h"

namespace ta51 {

// printf-style record to ObjectStream; negative on failure.
int WriteObjectRecord(Assembler& as, const char* format, ...) __attribute__((format(printf, 2, 3)));
// Same, reporting error 25 on failure.
void WriteCheckedRecord(Assembler& as, const char* format, ...) __attribute__((format(printf, 2, 3)));
void WriteLoadItem(Assembler& as, const uint8_t* bytes, int count, bool isField, bool first, bool last,
                   const OperandSlot* slot);
// The LR record of the current instruction (second pass).
void EmitInstruction(Assembler& as);
void WriteSegmentSwitch(Assembler& as);
// ASP: the new position of the segment of the last SB, after room with no data.
void WriteNewLocation(Assembler& as, uint32_t location);
// The segments of the register banks that USING and $REGISTERBANK asked for,
// unless they exist; they take the numbers behind the last segment.
void CreateRegisterBankSegments(Assembler& as);
void WriteModuleHead(Assembler& as);
void WriteSegmentRecords(Assembler& as);
void WriteSymbolRecords(Assembler& as);

}  // namespace ta51
