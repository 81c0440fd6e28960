#include "core/instruction_stream.h"

#include <cstring>

#include "core/diagnostics.h"

namespace ta51 {

namespace {

// A record: the length, the kind, and for a reusable instruction or an EQU
// a part of one size.
constexpr size_t kHeadSize = 2;
constexpr size_t kReusablePartSize = 3 + 1 + 1 + 1 + 2 + 8;
constexpr size_t kLongestRecord = kHeadSize + kReusablePartSize;
enum : unsigned char { kPlainInstruction = 0, kReusableInstruction = 1, kDefinition = 2 };
static_assert(1 + 1 + 2 + 8 + 4 == kReusablePartSize);

void PackReusable(const InstructionRecord& record, unsigned char* out) {
  std::memcpy(out, record.code, 3);
  out[3] = record.codeLength;
  out[4] = record.operandStep;
  out[5] = record.endStep;
  std::memcpy(out + 6, &record.textLength, 2);
  std::memcpy(out + 8, &record.check, 8);
}

void PackDefinition(const InstructionRecord& record, unsigned char* out) {
  out[0] = record.operandStep;
  out[1] = record.endStep;
  std::memcpy(out + 2, &record.textLength, 2);
  std::memcpy(out + 4, &record.check, 8);
  std::memcpy(out + 12, &record.value, 4);
}

void UnpackDefinition(const unsigned char* in, InstructionRecord& record) {
  record.operandStep = in[0];
  record.endStep = in[1];
  std::memcpy(&record.textLength, in + 2, 2);
  std::memcpy(&record.check, in + 4, 8);
  std::memcpy(&record.value, in + 12, 4);
}

void UnpackReusable(const unsigned char* in, InstructionRecord& record) {
  std::memcpy(record.code, in, 3);
  record.codeLength = in[3];
  record.operandStep = in[4];
  record.endStep = in[5];
  std::memcpy(&record.textLength, in + 6, 2);
  std::memcpy(&record.check, in + 8, 8);
}

unsigned char* Window(Assembler& as) {
  StatementReuse& reuse = as.Reuse;
  if (reuse.window == nullptr) reuse.window = static_cast<unsigned char*>(as.Memory.Take(StatementReuse::kWindowSize));
  return reuse.window;
}

void FlushWindow(Assembler& as) {
  StatementReuse& reuse = as.Reuse;
  if (reuse.windowUsed == 0) return;
  if (as.SizeFile == nullptr || std::fwrite(Window(as), 1, reuse.windowUsed, as.SizeFile) != reuse.windowUsed)
    ReportError(as, 25);
  reuse.windowUsed = 0;
}

// Second pass: at least `wanted` bytes after the taken ones, unless the
// stream ends first.
size_t Available(Assembler& as, size_t wanted) {
  StatementReuse& reuse = as.Reuse;
  size_t left = reuse.windowFilled - reuse.windowUsed;
  if (left >= wanted || as.SizeFile == nullptr) return left;
  unsigned char* window = Window(as);
  std::memmove(window, window + reuse.windowUsed, left);
  left += std::fread(window + left, 1, StatementReuse::kWindowSize - left, as.SizeFile);
  reuse.windowUsed = 0;
  reuse.windowFilled = left;
  return left;
}

}  // namespace

void WriteInstructionRecord(Assembler& as) {
  StatementReuse& reuse = as.Reuse;
  if (reuse.windowUsed + kLongestRecord > StatementReuse::kWindowSize) FlushWindow(as);
  unsigned char* out = Window(as) + reuse.windowUsed;
  InstructionRecord& kept = reuse.kept;
  out[0] = static_cast<unsigned char>(as.CodeLength & 0xFF);
  out[1] = kept.reusable ? kReusableInstruction : kPlainInstruction;
  reuse.windowUsed += kHeadSize;
  if (kept.reusable) {
    PackReusable(kept, out + kHeadSize);
    reuse.windowUsed += kReusablePartSize;
  }
  kept.reusable = false;
}

void WriteDefinitionRecord(Assembler& as, const InstructionRecord& record) {
  StatementReuse& reuse = as.Reuse;
  if (reuse.windowUsed + kLongestRecord > StatementReuse::kWindowSize) FlushWindow(as);
  unsigned char* out = Window(as) + reuse.windowUsed;
  out[0] = 0;
  out[1] = kDefinition;
  PackDefinition(record, out + kHeadSize);
  reuse.windowUsed += kLongestRecord;
}

void RewindInstructionStream(Assembler& as) {
  FlushWindow(as);
  as.Reuse.windowUsed = as.Reuse.windowFilled = 0;
  if (as.SizeFile != nullptr) std::rewind(as.SizeFile);
}

const InstructionRecord* NextStreamRecord(Assembler& as) {
  StatementReuse& reuse = as.Reuse;
  if (reuse.aheadRead) return &reuse.ahead;
  if (Available(as, kLongestRecord) < kHeadSize) return nullptr;
  const unsigned char* in = Window(as) + reuse.windowUsed;
  InstructionRecord& record = reuse.ahead;
  record.size = in[0];
  record.definition = in[1] == kDefinition;
  record.reusable = in[1] != kPlainInstruction;
  size_t length = kHeadSize;
  if (record.reusable) {
    if (reuse.windowFilled - reuse.windowUsed < kLongestRecord) return nullptr;  // a cut record ends the stream
    if (record.definition)
      UnpackDefinition(in + kHeadSize, record);
    else
      UnpackReusable(in + kHeadSize, record);
    length += kReusablePartSize;
  }
  reuse.windowUsed += length;
  reuse.aheadRead = true;
  return &record;
}

const InstructionRecord* NextInstructionRecord(Assembler& as) {
  const InstructionRecord* record = NextStreamRecord(as);
  while (record != nullptr && record->definition) {
    TakeStreamRecord(as);
    record = NextStreamRecord(as);
  }
  return record;
}

void TakeStreamRecord(Assembler& as) { as.Reuse.aheadRead = false; }

int TakeInstructionRecord(Assembler& as) {
  const InstructionRecord* record = NextInstructionRecord(as);
  TakeStreamRecord(as);
  return record != nullptr ? record->size : 0;
}

}  // namespace ta51
