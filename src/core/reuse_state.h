// Instructions of the first pass that the second pass takes as they were.
// An instruction whose bytes depended only on its text, its address and
// symbols that nothing later can change comes out of the second pass exactly
// as out of the first; the second pass then skips reading it again.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ta51 {

// What the first pass records of one instruction in the stream it hands to
// the second: the length it chose and, for an instruction the second pass
// may take as it is, its bytes and where its fields end. An EQU whose value
// nothing later can change has a record of its own in the stream, with the
// value in place of the bytes; the instructions' readers pass over it.
struct InstructionRecord {
  uint8_t size = 0;
  bool reusable = false;
  bool definition = false;  // the record of an EQU, always reusable
  // Only for a reusable instruction or an EQU:
  int32_t value = 0;        // of the EQU
  uint8_t code[3] = {0, 0, 0};
  uint8_t codeLength = 0;
  uint8_t operandStep = 0;  // from the opcode to the operands
  uint8_t endStep = 0;      // from the operands to where the statement left the cursor
  uint16_t textLength = 0;  // of the whole line
  uint64_t check = 0;       // of the line text, the segment, the address and the options
};

struct StatementReuse {
  // First pass: the statement being read.
  uint32_t diagnosticsBefore = 0;  // messages before it
  int32_t opcodeOffset = 0;        // where it starts
  bool lineReusable = false;       // cleared by whatever the second pass could see otherwise
  InstructionRecord kept;          // what goes into the stream when the instruction ends

  // Second pass: the record of the next instruction, read ahead.
  InstructionRecord ahead;
  bool aheadRead = false;

  // For tests and fuzzing: the second pass reads every instruction again and
  // stops the run if a record it would have taken differs from what it read.
  bool checkOnly = false;
  bool checkPending = false;
  bool definitionCheckPending = false;  // until the EQU's value is read again
  InstructionRecord checked;
  uint32_t diagnosticsAtCheck = 0;
  int32_t opcodeOffsetAtCheck = 0;

  // The stream's bytes pass through this window: records are written and
  // read with a copy each, the file with a call per window.
  static constexpr size_t kWindowSize = 16384;
  unsigned char* window = nullptr;  // in the run's memory
  size_t windowUsed = 0;    // first pass: bytes waiting; second: bytes taken
  size_t windowFilled = 0;  // second pass: bytes read into it

  // The second pass would check or find something the first did not.
  void Decline() { lineReusable = false; }
  void StartPass() {
    kept = InstructionRecord{};
    aheadRead = false;
    checkPending = false;
    definitionCheckPending = false;
    windowUsed = windowFilled = 0;
  }
};

}  // namespace ta51
