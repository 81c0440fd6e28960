// Segment directives and the current segment.
#pragma once

#include <cstdint>
#include <span>

#include "core/assembler.h"

namespace ta51 {

// Directive codes of the absolute segment keywords.
enum : int { kCodeCSEG = 46, kCodeDSEG = 47, kCodeXSEG = 48, kCodeISEG = 49, kCodeBSEG = 50 };

struct TypeKeyword {
  const char* keyword;
  int32_t type;
};
struct AlignmentKeyword {
  const char* keyword;
  int32_t kind;
  // Segment types that may take it; 0 ends the list, -1 means all types.
  int32_t allowed[3];
};
// The words SEGMENT reads, for tools that list the words of the language.
std::span<const TypeKeyword> SegmentTypeKeywords();
std::span<const AlignmentKeyword> SegmentAlignmentKeywords();

SegmentEntry* NewSegment(Assembler& as, int32_t type);
int SelectAbsoluteSegment(Assembler& as, int code, bool readAt, uint32_t address, bool forced);
void CreatePredefinedSegments(Assembler& as);
// Selects the default absolute code segment when there is no current one.
void EnsureCurrentSegment(Assembler& as);
// Positions back to their start for a new pass.
void RewindSegments(Assembler& as);
int SegmentDirective(Assembler& as);
int RsegDirective(Assembler& as);
int OrgDirective(Assembler& as);
// Keyword test at the read offset, case ignored, followed by one of `follow`.
bool MatchKeyword(Assembler& as, const char* keyword, const char* follow);

}  // namespace ta51
