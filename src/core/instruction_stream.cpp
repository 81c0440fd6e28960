#include "core/instruction_stream.h"

#include <cstring>

#include "core/diagnostics.h"

namespace ta51 {

namespace {

// A record: the length, a flag, and for a reusable instruction this part.
constexpr size_t kHeadSize = 2;
constexpr size_t kReusablePartSize = 3 + 1 + 1 + 1 + 2 + 8;
constexpr size_t kLongestRecord = kHeadSize + kReusablePartSize;

void PackReusable(const InstructionRecord& record, unsigned char* out) {
  std::memcpy(out, record.code, 3);
  out[3] = record.codeLength;
  out[4] = record.operandStep;
  out[5] = record.endStep;
  std::memcpy(out + 6, &record.textLength, 2);
  std::memcpy(out + 8, &record.check, 8);
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
  out[1] = kept.reusable ? 1 : 0;
  reuse.windowUsed += kHeadSize;
  if (kept.reusable) {
    PackReusable(kept, out + kHeadSize);
    reuse.windowUsed += kReusablePartSize;
  }
  kept.reusable = false;
}

void RewindInstructionStream(Assembler& as) {
  FlushWindow(as);
  as.Reuse.windowUsed = as.Reuse.windowFilled = 0;
  if (as.SizeFile != nullptr) std::rewind(as.SizeFile);
}

const InstructionRecord* NextInstructionRecord(Assembler& as) {
  StatementReuse& reuse = as.Reuse;
  if (reuse.aheadRead) return &reuse.ahead;
  if (Available(as, kLongestRecord) < kHeadSize) return nullptr;
  const unsigned char* in = Window(as) + reuse.windowUsed;
  InstructionRecord& record = reuse.ahead;
  record.size = in[0];
  record.reusable = in[1] != 0;
  size_t length = kHeadSize;
  if (record.reusable) {
    if (reuse.windowFilled - reuse.windowUsed < kLongestRecord) return nullptr;  // a cut record ends the stream
    UnpackReusable(in + kHeadSize, record);
    length += kReusablePartSize;
  }
  reuse.windowUsed += length;
  reuse.aheadRead = true;
  return &record;
}

int TakeInstructionRecord(Assembler& as) {
  const InstructionRecord* record = NextInstructionRecord(as);
  as.Reuse.aheadRead = false;
  return record != nullptr ? record->size : 0;
}

}  // namespace ta51
