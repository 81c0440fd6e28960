// Segments: SEGMENT, RSEG, the absolute segment keywords with AT, and ORG.
#include "directives/segments.h"

#include <strings.h>

#include <cstring>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "directives/banks.h"
#include "output/object_file.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"

namespace ta51 {

namespace {

constexpr const char* kKeywordFollow = " \t\n";

constexpr TypeKeyword kTypeKeywords[] = {
    {"CODE", T_CODE}, {"DATA", T_DATA}, {"XDATA", T_XDATA}, {"IDATA", T_IDATA}, {"BIT", T_BIT},
};

constexpr AlignmentKeyword kAlignmentKeywords[] = {
    {"PAGE", kKindPage, {T_CODE, T_XDATA, 0}},
    {"INPAGE", kKindInpage, {T_CODE, T_XDATA, 0}},
    {"INBLOCK", kKindInblock, {T_CODE, 0, 0}},
    {"BITADDRESSABLE", kKindBitaddressable, {T_DATA, 0, 0}},
    {"OVERLAYABLE", kKindOverlayable, {-1, 0, 0}},
    {"INTERRUPT", kKindInterrupt, {T_CODE, 0, 0}},
    {"UNIT", kKindUnit, {-1, 0, 0}},
    {"POSTPONE", kKindPostpone, {T_IDATA, T_XDATA, 0}},
    {"HIGH", kKindHigh, {-1, 0, 0}},
};

bool AlignmentAllowed(const AlignmentKeyword& row, int32_t type) {
  if (row.kind == kKindOverlayable) return type != T_CODE;
  for (int32_t allowed : row.allowed) {
    if (allowed == -1 || allowed == type) return true;
    if (allowed == 0) break;
  }
  return false;
}

int32_t TypeOfCode(int code) {
  switch (code) {
    case kCodeDSEG: return T_DATA;
    case kCodeXSEG: return T_XDATA;
    case kCodeISEG: return T_IDATA;
    case kCodeBSEG: return T_BIT;
    default: return T_CODE;
  }
}

int CodeOfType(int32_t type) {
  switch (type) {
    case T_DATA: return kCodeDSEG;
    case T_XDATA: return kCodeXSEG;
    case T_IDATA: return kCodeISEG;
    case T_BIT: return kCodeBSEG;
    default: return kCodeCSEG;
  }
}

SegmentEntry*& AbsoluteSlot(Assembler& as, int32_t type) {
  switch (type) {
    case T_DATA: return as.AbsDataSegment;
    case T_XDATA: return as.AbsXdataSegment;
    case T_IDATA: return as.AbsIdataSegment;
    case T_BIT: return as.AbsBitSegment;
    default: return as.AbsCodeSegment;
  }
}

SegmentEntry* FindAbsolute(Assembler& as, int32_t type, uint32_t address) {
  for (SegmentEntry& segment : as.Segments.entries)
    if (segment.type == type && segment.kind == kKindAbsolute && segment.startAddress == address) return &segment;
  return nullptr;
}

// The absolute segment of a type at an address; the first pass creates it.
SegmentEntry* FindOrCreateAbsolute(Assembler& as, int32_t type, uint32_t address) {
  SegmentEntry* found = FindAbsolute(as, type, address);
  if (found != nullptr) return found;
  if (as.SecondPass) {
    ReportError(as, 17);
    return nullptr;
  }
  SegmentEntry* segment = NewSegment(as, type);
  segment->type = type;
  segment->kind = kKindAbsolute;
  segment->startAddress = segment->location = address;
  return segment;
}

void MakeCurrent(Assembler& as, SegmentEntry* segment) {
  as.CurrentSegment = segment;
  if (as.SecondPass) WriteSegmentSwitch(as);
}

// The segment an ORG expression names must suit the segment it moves. In an
// absolute segment the value is an address, whichever absolute segment its
// terms came from: `ORG $+5` and `ORG TABLE+3` are read there before ORG
// starts the new absolute segment. A relocatable segment's offset is an
// address only in its own segment.
bool OrgReferenceFits(const SegmentEntry* named, const SegmentEntry* current) {
  if (named == nullptr) return true;
  if (current == nullptr || current->IsAbsolute()) return named->IsAbsolute();
  return named == current;
}

// Skips blanks and tests the alignment keywords; 0 after an error.
int32_t ReadAlignment(Assembler& as, int32_t type) {
  SkipBlanks(as);
  for (const AlignmentKeyword& row : kAlignmentKeywords) {
    if (!MatchKeyword(as, row.keyword, kKeywordFollow)) continue;
    if (!AlignmentAllowed(row, type)) return ReportError(as, 89);
    return row.kind;
  }
  return kKindUnit;
}

// Skips blanks and tests VARARG and COMMON; -1 after an error.
int32_t ReadAttribute(Assembler& as, int32_t type) {
  SkipBlanks(as);
  if (MatchKeyword(as, "VARARG", kKeywordFollow)) {
    if (type == T_CODE) {
      ReportError(as, 89);
      return -1;
    }
    return kAttrVararg;
  }
  if (MatchKeyword(as, "COMMON", kKeywordFollow)) return kAttrCommon;
  return kAttrNone;
}

}  // namespace

bool MatchKeyword(Assembler& as, const char* keyword, const char* follow) {
  size_t length = std::strlen(keyword);
  const char* here = as.Line.Here();
  if (strncasecmp(here, keyword, length) != 0) return false;
  char next = here[length];
  if (next == '\0' || std::strchr(follow, next) == nullptr) return false;
  as.Line.offset += static_cast<int32_t>(length);
  return true;
}

SegmentEntry* NewSegment(Assembler& as, int32_t type) {
  std::deque<SegmentEntry>& entries = as.Segments.entries;
  int32_t number = entries.empty() ? 0 : entries.back().number + 1;
  SegmentEntry& segment = entries.emplace_back();
  segment.number = number;
  switch (type) {
    case T_XDATA: segment.owner = as.Segments.predefinedOwner[0]; break;
    case T_IDATA: segment.owner = as.Segments.predefinedOwner[1]; break;
    case T_DATA: segment.owner = as.Segments.predefinedOwner[2]; break;
    case T_BIT: segment.owner = as.Segments.predefinedOwner[3]; break;
    default: break;
  }
  segment.hasCallTargetList = type == T_CODE;
  return &segment;
}

void CreatePredefinedSegments(Assembler& as) {
  struct Predefined {
    const char* name;
    int32_t type;
    int ownerSlot;  // -1: owns nothing
  };
  constexpr Predefined kPredefined[] = {
      {"BDATA", T_DATA, -1}, {"XDATA", T_XDATA, 0}, {"IDATA", T_IDATA, 1}, {"DATA", T_DATA, 2}, {"BIT", T_BIT, 3},
  };
  for (const Predefined& row : kPredefined) {
    SegmentEntry& segment = as.Segments.entries.emplace_back();
    segment.number = static_cast<int32_t>(as.Segments.entries.size());
    segment.type = row.type;
    segment.kind = kKindUnit;
    segment.attribute = kAttrPredefined;
    segment.name = row.name;
    if (row.ownerSlot >= 0) as.Segments.predefinedOwner[row.ownerSlot] = &segment;
  }
}

void RewindSegments(Assembler& as) {
  for (SegmentEntry& segment : as.Segments.entries)
    segment.location = segment.IsAbsolute() ? segment.startAddress : 0;
}

int SelectAbsoluteSegment(Assembler& as, int code, bool readAt, uint32_t address, bool forced) {
  int32_t type = TypeOfCode(code);
  SegmentEntry*& slot = AbsoluteSlot(as, type);
  SegmentEntry* candidate = slot;
  if (readAt) {
    SkipBlanks(as);
    if (MatchKeyword(as, "AT", kKeywordFollow)) {
      address = static_cast<uint32_t>(EvaluateAbsolute(as));
      if (as.LineHasError) return 0;
      candidate = nullptr;
    }
  }
  if (forced) candidate = nullptr;
  if (candidate == nullptr) candidate = FindOrCreateAbsolute(as, type, address);
  if (candidate == nullptr) return 0;
  slot = candidate;
  MakeCurrent(as, candidate);
  as.LineValue = static_cast<int32_t>(candidate->location);
  return 12;
}

std::span<const TypeKeyword> SegmentTypeKeywords() { return kTypeKeywords; }
std::span<const AlignmentKeyword> SegmentAlignmentKeywords() { return kAlignmentKeywords; }

int SegmentDirective(Assembler& as) {
  if (!as.LineHasLabel) return ReportError(as, 27);
  const char* label = as.Line.Pointer(as.LabelOffset);
  int existing = LookupSymbol(as, label);
  if (as.LineHasError) return 0;
  int32_t type = 0;
  for (const TypeKeyword& row : kTypeKeywords)
    if (MatchKeyword(as, row.keyword, kKeywordFollow)) {
      type = row.type;
      break;
    }
  if (type == 0) return ReportError(as, 85);
  SegmentEntry* segment = nullptr;
  if (!as.SecondPass) {
    if (existing != 0) return ReportError(as, 13);
    segment = NewSegment(as, type);
    SymbolDefinition definition;
    definition.value = segment->number;
    definition.type = T_RSEGMENT;
    DefineSymbol(as, label, definition);
    if (as.LineHasError) return 0;
    segment->name = as.FoundSymbol->Name();
  }
  SymbolEntry* symbol = as.FoundSymbol;
  int32_t kind = ReadAlignment(as, type);
  if (kind == 0) return 0;
  int32_t attribute = ReadAttribute(as, type);
  if (attribute < 0) return 0;
  SkipBlanks(as);
  BankRecord* bank = nullptr;
  if (!ParseBankClause(as, type, bank)) return 0;
  if (segment != nullptr) {
    segment->type = type;
    segment->kind = kind;
    segment->attribute = attribute;
    segment->bank = bank;
    symbol->relocation = type;
  }
  as.ShowLineValue = false;
  return 12;
}

int RsegDirective(Assembler& as) {
  int type = LookupSymbol(as, as.Line.Here());
  if (as.LineHasError) return 0;
  if (type != T_RSEGMENT) return ReportError(as, 90);
  std::string name(as.FoundSymbol->Name());
  as.Line.offset += static_cast<int32_t>(as.NameBuffer.size());
  SegmentEntry* target = nullptr;
  for (SegmentEntry& segment : as.Segments.entries)
    if (!segment.IsAbsolute() && segment.attribute != kAttrPredefined && segment.name == name) {
      target = &segment;
      break;
    }
  if (target == nullptr) return ReportError(as, 90);
  if (target == as.CurrentSegment) return 12;
  as.LineValue = static_cast<int32_t>(target->location);
  MakeCurrent(as, target);
  return 12;
}

int OrgDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  uint32_t value = static_cast<uint32_t>(EvaluateAbsolute(as, true));
  if (as.LineHasError) return 0;
  SegmentEntry* current = as.CurrentSegment;
  if (current == nullptr) {
    SegmentEntry* segment = FindOrCreateAbsolute(as, T_CODE, value);
    if (segment == nullptr) return 0;
    as.AbsCodeSegment = segment;
    MakeCurrent(as, segment);
    as.LineValue = static_cast<int32_t>(segment->location);
    segment->location = segment->startAddress;
  } else if (current->IsAbsolute()) {
    if (SelectAbsoluteSegment(as, CodeOfType(current->type), false, value, true) == 0) return 0;
    as.CurrentSegment->location = as.CurrentSegment->startAddress;
  } else {
    if (value < current->location) return ReportError(as, 55);
    if (as.SecondPass) {
      as.TotalBytes += value - current->location;
      current->reserved += value - current->location;
      if (as.opt.OBJ) WriteCheckedRecord(as, "ASP,%X.\r\n", value);
    }
    current->location = value;
  }
  if (as.SecondPass && !OrgReferenceFits(as.ExprSegment, current)) return ReportError(as, 95);
  return 2;
}

void EnsureCurrentSegment(Assembler& as) {
  if (as.CurrentSegment == nullptr) SelectAbsoluteSegment(as, kCodeCSEG, false, 0, false);
}

}  // namespace ta51
