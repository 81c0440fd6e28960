// Debug records: the line table of the DEBUG option, the line blocks of
// __SFILE and __SLINE, and the blocks of types, constants, symbols and
// segments at the end of the module.
#pragma once

#include <cstdint>

#include "core/assembler.h"

namespace ta51 {

// Whether the second pass gathers the line table: DEBUG on, an object file
// to put it in, and no __SFILE that brings lines of its own.
inline bool LineTableWanted(const Assembler& as) {
  return as.SecondPass && as.opt.OBJ && as.opt.DEBUG && !as.DebugFileSeen;
}

// The line of the instruction just assembled (LineTableWanted holds). A
// percent call line, which has no bytes of its own, takes the address of
// the first instruction of its expansion.
void NoteInstructionLine(Assembler& as);

// A MACRO call gets one line entry for all the code of its body.
struct CallLineMark {
  const SegmentEntry* segment = nullptr;
  uint32_t location = 0;
  uint32_t line = 0;
  bool fromSourceFile = false;
};
CallLineMark MarkCallLine(Assembler& as);
void RecordCallLine(Assembler& as, const CallLineMark& mark);

// The BB5 blocks of SourceMarkList; nothing when it holds no line.
void WriteMarkBlocks(Assembler& as);
// Types, constants, the line table, symbols and segments (DEBUG on).
void WriteDebugRecords(Assembler& as);
// The six basic types, once per module; `header` adds BB1 and BE1.
void WriteTypeBlock(Assembler& as, bool header);
// The constants, once per module; `header` adds BB3 and BE3 around them.
// True when a header was asked for and no constant was found.
bool WriteConstantBlock(Assembler& as, bool header);

}  // namespace ta51
