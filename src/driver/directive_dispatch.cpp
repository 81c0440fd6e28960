// Dispatch of directives and dollar controls to their handlers. A code that
// reached no handler is refused, so that nothing is silently assembled wrong.
#include "driver/directive_dispatch.h"

#include "directives/controls.h"
#include "directives/data.h"
#include "directives/debug_directives.h"
#include "directives/definitions.h"
#include "directives/general.h"
#include "directives/segments.h"
#include "core/diagnostics.h"
#include "core/keyword_tables.h"
#include "driver/line_reader.h"
#include "driver/pass.h"
#include "output/list_file.h"
#include "textlang/conditional.h"
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

int AbsoluteSegmentDirective(Assembler& as, int code) { return SelectAbsoluteSegment(as, code, true, 0, false); }

}  // namespace

int ProcessDirective(Assembler& as, int code) {
  SkipBlanks(as);
  as.OperandOffset = as.Line.offset;
  // Macro arguments reach the operands of every directive but these four,
  // which act on the operand field as it was written.
  if (as.InMacroExpansion && code != kDirEnd && code != kDirFail && code != kDirEven && code != kDirAlign)
    SubstituteParameters(as, as.Line.offset, true);
  switch (code) {
    case kDirEnd: return EndDirective(as);
    case kDirOpt: return OptDirective(as);
    case kDirFields: return FieldsDirective(as);
    case kDirPageWidth: return PageWidthDirective(as);
    case kDirInclude: return ProcessInclude(as);
    case kDirOrg: return OrgDirective(as);
    case kDirDb: return DbDirective(as);
    case kDirDw: return DwDirective(as);
    case kDirDs: return DsDirective(as);
    case kDirDbit: return DbitDirective(as);
    case kDirEven: return EvenDirective(as);
    case kDirAlign: return AlignDirective(as);
    case kDirBit: return BitDirective(as);
    case kDirData: return AddressDirective(as, T_DATA);
    case kDirXdata: return AddressDirective(as, T_XDATA);
    case kDirIdata: return AddressDirective(as, T_IDATA);
    case kDirCode: return AddressDirective(as, T_CODE);
    case kDirUsing: return UsingDirective(as);
    case kDirPublic: return PublicDirective(as);
    case kDirExtern: return ExternDirective(as);
    case kDirName: return NameDirective(as);
    case kDirTitle: return TitleDirective(as);
    case kDirFail: return FailDirective(as);
    case kDirPage: return PageDirective(as);
    case kDirSpace: return SpaceDirective(as);
    case kDirIncludeLib: return IncludeLibraryDirective(as);
    case kDirNoOverlay: return NoOverlayDirective(as);
    case kDirSourceFile: return SourceFileDirective(as);
    case kDirSourceLine: return SourceLineDirective(as);
    case kDirDebug: return DebugBlockDirective(as);
    case kDirDebugEnd: return kResultDone;  // only the end mark of a __DEBUG block
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
    case kCtrlSave: return SaveControl(as);
    case kCtrlRestore: return RestoreControl(as);
    case kCtrlSet: return SetControl(as, false);
    case kCtrlReset: return SetControl(as, true);
    case kCtrlIf: case kCtrlEndif: case kCtrlElse: case kCtrlElseif: return ProcessControlConditional(as, code);
    case kCtrlNoList: return NoListControl(as);
    case kCtrlList: return ListControl(as);
    case kCtrlEject: return EjectControl(as);
    case kCtrlTitle: return TitleControl(as);
    default: return kResultDone;
  }
}

}  // namespace ta51
