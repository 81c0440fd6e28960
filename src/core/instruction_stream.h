// The stream of instruction records from the first pass to the second, kept
// in a temporary file: the operating system's file cache costs far less than
// fresh memory would.
#pragma once

#include "core/assembler.h"

namespace ta51 {

// First pass, at the end of an instruction: its record, with the reusable
// part if one was kept for it.
void WriteInstructionRecord(Assembler& as);
// Between the passes: writes what waits and turns the stream back to its start.
void RewindInstructionStream(Assembler& as);
// First pass, at the end of an EQU the second pass may take as it is.
void WriteDefinitionRecord(Assembler& as, const InstructionRecord& record);
// Second pass: the next record of either kind, read once; nullptr at the end
// of the stream.
const InstructionRecord* NextStreamRecord(Assembler& as);
// Second pass: the record of the next instruction, passing over those of
// EQUs; nullptr at the end of the stream.
const InstructionRecord* NextInstructionRecord(Assembler& as);
// Second pass: takes the next record of either kind.
void TakeStreamRecord(Assembler& as);
// Second pass: takes the next instruction's record; the length the first
// pass chose, or 0.
int TakeInstructionRecord(Assembler& as);

}  // namespace ta51
