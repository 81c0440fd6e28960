// An instruction is kept when its line stood outside any macro, case was
// significant in names, all it named was defined before it and cannot be set
// again, it used nothing the linker places, and the checks that only the
// second pass makes would pass. The second pass reuses it only as the next
// instruction of the stream, for a line of the same text at the same address
// of the same segment under the same options: a 64-bit check of those must
// match. An EQU is kept by the same rules when its value is a plain number;
// the second pass then restores the value and the cursor instead of reading
// its expression again.
#include "driver/statement_reuse.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/instruction_stream.h"
#include "core/statement.h"

namespace ta51 {

namespace {

constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15u;

uint64_t Mix(uint64_t check, uint64_t word) {
  check = (check ^ word) * kMultiplier;
  return check ^ (check >> 32);
}

uint64_t CheckOf(const Assembler& as) {
  const std::string& text = as.Line.text;
  const size_t length = text.size();
  uint64_t check = Mix(0x2545F4914F6CDD1Du, length);
  size_t at = 0;
  for (; at + 8 <= length; at += 8) {
    uint64_t word;
    std::memcpy(&word, text.data() + at, 8);
    check = Mix(check, word);
  }
  uint64_t tail = 0;
  for (; at < length; ++at) tail = (tail << 8) | static_cast<unsigned char>(text[at]);
  check = Mix(check, tail);
  const uint64_t options = (as.opt.PredefinedSymbolsEnabled.Value() != 0 ? 1u : 0u) |
                           (as.opt.InPageOption.Value() != 0 ? 2u : 0u);
  check = Mix(check, reinterpret_cast<uintptr_t>(as.CurrentSegment));
  return Mix(check, (uint64_t{as.CurrentSegment->location} << 8) | options);
}

uint32_t DiagnosticCount(const Assembler& as) {
  return static_cast<uint32_t>(as.ErrorCount) + static_cast<uint32_t>(as.WarningCount);
}

// Ignoring case, a name finds the first of its spellings in name order, and
// a spelling defined later may come first: such lines are always read again.
bool IgnoresCase(const Assembler& as) { return as.opt.NOCASE.Value() != 0; }

bool FitsByte(int32_t step) { return step >= 0 && step <= UINT8_MAX; }

bool IsFinal(const Assembler& as, int result) {
  const StatementReuse& reuse = as.Reuse;
  return reuse.lineReusable && result == kResultInstruction && !as.LineHasError && !as.ExprUndefined &&
         !as.ExprRelocatable && as.OperandSlot1.text.empty() && as.OperandSlot2.text.empty() &&
         as.OperandSlot1.FixupOffset == 0 && as.OperandSlot2.FixupOffset == 0 && as.CurrentSegment != nullptr &&
         DiagnosticCount(as) == reuse.diagnosticsBefore && as.CodeLength >= 0 && as.CodeLength <= 3 &&
         FitsByte(as.OperandOffset - reuse.opcodeOffset) && FitsByte(as.Line.offset - as.OperandOffset) &&
         as.Line.text.size() <= UINT16_MAX && !IgnoresCase(as);
}

bool IsFinalDefinition(const Assembler& as, int result, int registerCode) {
  const StatementReuse& reuse = as.Reuse;
  return reuse.lineReusable && result == kResultEqu && registerCode < 0 && !as.LineHasError && !as.ExprUndefined &&
         !as.ExprRelocatable && as.OperandSlot1.text.empty() && as.CurrentSegment != nullptr &&
         DiagnosticCount(as) == reuse.diagnosticsBefore && FitsByte(as.OperandOffset - reuse.opcodeOffset) &&
         FitsByte(as.Line.offset - as.OperandOffset) && as.Line.text.size() <= UINT16_MAX && !IgnoresCase(as);
}

bool Matches(const Assembler& as, const InstructionRecord& record) {
  return record.reusable && record.textLength == as.Line.text.size() && !IgnoresCase(as) && record.check == CheckOf(as);
}

[[noreturn]] void StopOnDifference(const Assembler& as, const char* what) {
  std::fprintf(stderr, "ta51: a reused %s differs from the second reading: %s", what, as.Line.text.c_str());
  std::abort();
}

// Second pass: the EQU the next record stands for, restored or, when records
// are only checked, noted for the check behind its reading.
int ReuseDefinition(Assembler& as, const InstructionRecord& record) {
  TakeStreamRecord(as);
  if (as.Reuse.checkOnly) {
    as.Reuse.checked = record;
    as.Reuse.definitionCheckPending = true;
    as.Reuse.diagnosticsAtCheck = DiagnosticCount(as);
    as.Reuse.opcodeOffsetAtCheck = as.Line.offset;
    return 0;
  }
  as.OperandOffset = as.Line.offset + record.operandStep;
  as.Line.offset = as.OperandOffset + record.endStep;
  as.LineValue = record.value;
  return kResultReusedEqu;
}

}  // namespace

void WatchStatement(Assembler& as) {
  StatementReuse& reuse = as.Reuse;
  reuse.diagnosticsBefore = DiagnosticCount(as);
  reuse.lineReusable = !as.InMacroExpansion && !as.PercentDialect;
  reuse.opcodeOffset = as.Line.offset;
  reuse.kept.reusable = false;
}

void KeepStatement(Assembler& as, int result) {
  if (!IsFinal(as, result)) return;
  InstructionRecord& kept = as.Reuse.kept;
  kept.reusable = true;
  // The address the statement stands at: the segment moves on only when the line ends.
  kept.check = CheckOf(as);
  std::memcpy(kept.code, as.CodeBuffer, sizeof kept.code);
  kept.codeLength = static_cast<uint8_t>(as.CodeLength);
  kept.operandStep = static_cast<uint8_t>(as.OperandOffset - as.Reuse.opcodeOffset);
  kept.endStep = static_cast<uint8_t>(as.Line.offset - as.OperandOffset);
  kept.textLength = static_cast<uint16_t>(as.Line.text.size());
}

void KeepDefinition(Assembler& as, int result, int registerCode) {
  if (!IsFinalDefinition(as, result, registerCode)) return;
  InstructionRecord record;
  record.definition = record.reusable = true;
  record.check = CheckOf(as);
  record.value = as.LineValue;
  record.operandStep = static_cast<uint8_t>(as.OperandOffset - as.Reuse.opcodeOffset);
  record.endStep = static_cast<uint8_t>(as.Line.offset - as.OperandOffset);
  record.textLength = static_cast<uint16_t>(as.Line.text.size());
  WriteDefinitionRecord(as, record);
}

// An EQU's record that this line does not match stays: it may be the
// record of a later line, as a line between them (a directive, an EQU that
// was not kept) has none. One still there when an instruction takes its own
// record was left behind, and the instruction passes over it.
int ReuseStatement(Assembler& as) {
  if (as.CurrentSegment == nullptr || as.InMacroExpansion || as.PercentDialect) return 0;
  const InstructionRecord* record = NextStreamRecord(as);
  if (record == nullptr || !Matches(as, *record)) return 0;
  if (record->definition) return ReuseDefinition(as, *record);
  if (as.Reuse.checkOnly) {
    as.Reuse.checked = *record;
    as.Reuse.checkPending = true;
    as.Reuse.diagnosticsAtCheck = DiagnosticCount(as);
    as.Reuse.opcodeOffsetAtCheck = as.Line.offset;
    return 0;
  }
  std::memcpy(as.CodeBuffer, record->code, sizeof record->code);
  as.CodeLength = record->codeLength;
  as.OperandOffset = as.Line.offset + record->operandStep;
  as.Line.offset = as.OperandOffset + record->endStep;
  TakeInstructionRecord(as);
  return kResultInstruction;
}

void CheckReusedStatement(Assembler& as, int result) {
  StatementReuse& reuse = as.Reuse;
  reuse.checkPending = false;
  const InstructionRecord& record = reuse.checked;
  const int32_t operandOffset = reuse.opcodeOffsetAtCheck + record.operandStep;
  const bool same = result == kResultInstruction && !as.LineHasError &&
                    DiagnosticCount(as) == reuse.diagnosticsAtCheck && as.CodeLength == record.codeLength &&
                    std::memcmp(as.CodeBuffer, record.code, static_cast<size_t>(record.codeLength)) == 0 &&
                    as.OperandSlot1.FixupOffset == 0 && as.OperandSlot2.FixupOffset == 0 &&
                    as.OperandSlot1.text.empty() && as.OperandSlot2.text.empty() &&
                    as.OperandOffset == operandOffset && as.Line.offset == operandOffset + record.endStep;
  if (!same) StopOnDifference(as, "instruction");
}

void CheckReusedDefinition(Assembler& as, int result, int registerCode) {
  StatementReuse& reuse = as.Reuse;
  reuse.definitionCheckPending = false;
  const InstructionRecord& record = reuse.checked;
  const int32_t operandOffset = reuse.opcodeOffsetAtCheck + record.operandStep;
  const bool same = result == kResultEqu && registerCode < 0 && !as.LineHasError &&
                    DiagnosticCount(as) == reuse.diagnosticsAtCheck && as.LineValue == record.value &&
                    as.ShowLineValue && as.OperandOffset == operandOffset &&
                    as.Line.offset == operandOffset + record.endStep;
  if (!same) StopOnDifference(as, "EQU");
}

}  // namespace ta51
