#include "directives/segments.h"
namespace ta51 {
SegmentEntry* NewSegment(Assembler&, int32_t) { return nullptr; }
int SelectAbsoluteSegment(Assembler&, int, bool, uint32_t, bool) { return 12; }
void CreatePredefinedSegments(Assembler&) {}
void RewindSegments(Assembler&) {}
int SegmentDirective(Assembler&) { return 12; }
int RsegDirective(Assembler&) { return 12; }
int OrgDirective(Assembler&) { return 2; }
bool MatchKeyword(Assembler&, const char*, const char*) { return false; }
}
