// Dispatch of directives and dollar controls to their handlers. Directives
// that ta51 does not carry out yet are refused, so that none is silently
// assembled wrong.
#include "directives/directives.h"

#include "directives/segments.h"
#include "driver/diagnostics.h"
#include "driver/keywords.h"
#include "driver/line_reader.h"
#include "driver/pass.h"
#include "output/list_file.h"
#include "symbols/expression.h"
#include "target/predefined.h"
#include "textlang/textlang.h"

namespace ta51 {

namespace {

int Unsupported(Assembler& as) { return ReportError(as, 104); }

int EndDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  if (as.SecondPass && as.InIncludeFile) {
    ReportWarning(as, 70);
  } else if (as.InMacroExpansion) {
    return ReportError(as, 51);
  } else {
    as.EndSeen = true;
  }
  as.ShowLineValue = false;
  return kResultDone;
}

int32_t EvaluatePlain(Assembler& as) {
  ExprValue expr;
  return EvaluateExpression(as, expr, nullptr);
}

// `$REGISTERBANK(n [, n] ...)`: marks banks as used without moving AR0..AR7.
int RegisterBankControl(Assembler& as) {
  if (as.Line.Peek() != '(') return ReportError(as, 58);
  ++as.Line.offset;
  while (true) {
    as.LineValue = EvaluatePlain(as);
    if (as.LineHasError) return 0;
    if (static_cast<uint32_t>(as.LineValue) > 3) return ReportError(as, 10);
    as.RegisterBankUsed[as.LineValue] = true;
    SkipBlanks(as);
    char c = as.Line.Peek();
    if (c == ')') {
      ++as.Line.offset;
      return kResultNoLabel;
    }
    if (c == '\n' || c == '\0') return ReportError(as, 5);
    ++as.Line.offset;
  }
}

int AbsoluteSegmentDirective(Assembler& as, int code) { return SelectAbsoluteSegment(as, code, true, 0, false); }

}  // namespace

int UsingDirective(Assembler& as) {
  as.LineValue = EvaluatePlain(as);
  if (as.LineHasError) return 0;
  if (static_cast<uint32_t>(as.LineValue) > 3) return ReportError(as, 10);
  EnterBankRegisters(as, as.LineValue);
  as.RegisterBankUsed[as.LineValue] = true;
  return kResultNoLabel;
}

int ProcessDirective(Assembler& as, int code) {
  SkipBlanks(as);
  as.OperandOffset = as.Line.offset;
  // Parameter substitution of a macro expansion plugs in here, for every
  // directive but END, FAIL, EVEN and ALIGN.
  switch (code) {
    case kDirEnd: return EndDirective(as);
    case kDirFields: return FieldsDirective(as);
    case kDirPageWidth: return PageWidthDirective(as);
    case kDirInclude: return ProcessInclude(as);
    case kDirOrg: return OrgDirective(as);
    case kDirUsing: return UsingDirective(as);
    case kDirSegment: return SegmentDirective(as);
    case kDirRseg: return RsegDirective(as);
    case kCodeCSEG: case kCodeDSEG: case kCodeXSEG: case kCodeISEG: case kCodeBSEG:
      return AbsoluteSegmentDirective(as, code);
    default: return Unsupported(as);
  }
}

int ProcessControl(Assembler& as, int code) {
  switch (code) {
    case kDirInclude:
      if (as.Line.Peek() != '(') return ReportError(as, 58);
      return ProcessInclude(as);
    case kCtrlRegisterBank: return RegisterBankControl(as);
    default: return Unsupported(as);
  }
}

}  // namespace ta51
