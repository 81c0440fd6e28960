// The run over one source file: opening the files, the two passes, and the
// object file put together from its head and the body of the second pass.
#include <cctype>
#include <cstdio>
#include <memory>

#include "directives/banks.h"
#include "directives/segments.h"
#include "core/diagnostics.h"
#include "core/instruction_stream.h"
#include "driver/line_reader.h"
#include "core/option_keywords.h"
#include "driver/pass.h"
#include "output/debug_records.h"
#include "output/list_file.h"
#include "output/object_file.h"
#include "platform/platform.h"
#include "symbols/symbols.h"
#include "isa/predefined.h"
#include "textlang/cstyle.h"
#include "textlang/percent.h"

namespace ta51 {

namespace {

void OpenListFile(Assembler& as) {
  if (as.ListIsConsole) {
    as.ListStream = as.console.out;
    return;
  }
  as.ListStream = OpenForRewrite(as.ListName);
  if (as.ListStream == nullptr) FatalExit(as, "Cannot open list file", as.ListName);
  // The list text gathers in the run's list buffer, which hands it over in
  // large pieces: a stream buffer as well would only copy it once more.
  std::setvbuf(as.ListStream, nullptr, _IONBF, 0);
}

FILE* OpenTemporary(Assembler& as, std::string& name, bool& exists, bool buffered) {
  FILE* file = CreateTemporaryFile(name, buffered ? &as.Buffers : nullptr);
  if (file == nullptr) FatalExit(as, "Cannot create temporary filename");
  exists = true;
  return file;
}

void ForgetSegmentSelection(Assembler& as) {
  as.CurrentSegment = nullptr;
  as.AbsCodeSegment = as.AbsDataSegment = as.AbsXdataSegment = nullptr;
  as.AbsIdataSegment = as.AbsBitSegment = nullptr;
}

void SetFirstPassValues(Assembler& as) {
  OptionFlags& o = as.opt;
  for (OptionFlag* on : {&o.IHEX, &o.CLIST, &o.MC, &o.MD, &o.OBJ, &o.PAGE}) SetOptionFlag(as, *on, 1);
  for (OptionFlag* off : {&o.LIST, &o.NOCASE, &o.MEX, &o.SEQ, &o.UNA, &o.SYM, &o.LISTF, &o.DEBUG,
                          &o.InPageOption, &o.ProcessorMode})
    SetOptionFlag(as, *off, 0);
  as.FromSourceFile = true;
  as.NameIsSet = false;
  as.ExplicitModuleName.clear();
  as.TitleText.clear();
  ForgetSegmentSelection(as);
}

void SetSecondPassValues(Assembler& as) {
  OptionFlags& o = as.opt;
  for (OptionFlag* on : {&o.CLIST, &o.MC, &o.MD, &o.LIST}) SetOptionFlag(as, *on, 1);
  for (OptionFlag* off : {&o.MEX, &o.SEQ, &o.UNA, &o.ProcessorMode}) SetOptionFlag(as, *off, 0);
  as.FromSourceFile = true;
  ForgetSegmentSelection(as);
  ResetPercentInstances(as);
  RewindFileScopes(as);
}

bool CommencingLinesWanted(const Assembler& as) { return as.ZvedCount == 0 && !as.CL && !as.NOLOGO; }

// A first line that starts with a digit makes the whole file sequence-numbered.
void DetectSequenceNumbers(Assembler& as) {
  as.SequenceNumbered = false;
  as.LineNumber = 1;
  bool gotLine = FetchLine(as);
  as.SourceStream->Rewind();
  if (gotLine && std::isdigit(static_cast<unsigned char>(as.Line.At(0)))) as.SequenceNumbered = true;
}

void RunFirstPass(Assembler& as) {
  if (CommencingLinesWanted(as)) std::fputs("Commencing first pass\n", as.console.out);
  as.NextExternalIndex = 1;
  as.NextDebugNumber = as.NextDebugTypeNumber = 40000;
  ResetPassState(as);
  AssemblePass(as);
  FinishCStylePass(as);
  if (as.Conditional.Depth > 0) ReportError(as, 35);
  if (as.Conditional.ControlDepth > 0) ReportError(as, 39);
  if (as.opt.LIST && as.opt.SYM) ListSymbolTable(as);
  if (as.ErrorCount != 0 || as.WarningCount != 0) {
    char text[96];
    std::snprintf(text, sizeof text, "\nPass 1 complete\n%d errors\n%d warnings\n", as.ErrorCount, as.WarningCount);
    as.MessageBuffer = text;
    EmitMessage(as, false);
  }
}

void RunSecondPass(Assembler& as) {
  if (CommencingLinesWanted(as)) std::fputs("Commencing second pass\n", as.console.out);
  as.SourceStream->Rewind();
  if (as.opt.OBJ) {
    as.FinalObjectStream = OpenForRewrite(as.ObjectName);
    if (as.FinalObjectStream == nullptr) FatalExit(as, "Can't open object file", as.ObjectName);
    as.Buffers.Attach(as.FinalObjectStream);
    as.BodyFile = OpenTemporary(as, as.BodyFileName, as.BodyFileExists, true);
    as.ObjectStream = as.BodyFile;
  }
  RewindInstructionStream(as);
  SetSecondPassValues(as);
  ResetPassState(as);
  AssemblePass(as);
}

void ChooseModuleName(Assembler& as) {
  std::string text = as.NameIsSet ? as.ExplicitModuleName
                     : as.ModuleNameOption ? *as.ModuleNameOption
                                           : as.CurrentFileName;
  PathParts parts = SplitPath(text);
  as.ModuleFileName = parts.name;
  size_t dot = text.find_last_of('.');
  as.ModuleName = dot == std::string::npos ? text : text.substr(0, dot);
}

// Appends the body file to the object behind its head, and closes both.
void AppendBody(Assembler& as, FILE* object, const std::string& bodyName) {
  FILE* body = std::fopen(bodyName.c_str(), "rb");
  if (body == nullptr) {
    CloseRewritten(object);
    std::fputs("Cannot open file\n", as.console.out);
    Terminate(as, false);
  }
  // Large blocks: one system call per block each way.
  std::setvbuf(body, nullptr, _IONBF, 0);
  char* block = static_cast<char*>(as.Memory.Take(kStreamBufferSize));
  size_t got;
  bool failed = false;
  do {
    got = std::fread(block, 1, kStreamBufferSize, body);
    if (std::fwrite(block, 1, got, object) != got) failed = true;
  } while (got == kStreamBufferSize);
  if (!CloseRewritten(object)) failed = true;
  std::fclose(body);
  if (failed) ReportError(as, 25, false);
}

void BuildObjectFile(Assembler& as) {
  ChooseModuleName(as);
  // The register banks take their numbers ahead of the code banks, so that
  // no two entries of the module share one; debug records name both.
  CreateRegisterBankSegments(as);
  NumberBanks(as);
  WriteMarkBlocks(as);
  if (as.opt.DEBUG) WriteDebugRecords(as);
  WriteCheckedRecord(as, "ME.\r\n");
  std::fclose(as.BodyFile);
  as.BodyFile = nullptr;
  as.ObjectStream = as.FinalObjectStream;
  WriteModuleHead(as);
  WriteSegmentRecords(as);
  FILE* object = as.FinalObjectStream;
  as.ObjectStream = nullptr;
  as.FinalObjectStream = nullptr;
  AppendBody(as, object, as.BodyFileName);
  std::remove(as.BodyFileName.c_str());
  as.BodyFileExists = false;
}

// OBJOFF in the second pass: the object file keeps what it had when it was
// opened, nothing, and the body written so far is dropped with its file.
void CloseObjectLeftByObjoff(Assembler& as) {
  FILE* object = as.FinalObjectStream;
  as.FinalObjectStream = as.ObjectStream = nullptr;
  if (!CloseRewritten(object)) ReportError(as, 25, false);
  RemoveTemporaryFiles(as);
}

void PrintClosingMessage(Assembler& as) {
  char text[160];
  if (as.CL)
    std::snprintf(text, sizeof text, "%u bytes generated.\n", as.TotalBytes);
  else
    std::snprintf(text, sizeof text, "Assembly complete\nTotal bytes generated: %ld\n%d errors\n%d warnings\n",
                  static_cast<long>(as.TotalBytes), as.ErrorCount, as.WarningCount);
  as.MessageBuffer = text;
  EmitMessage(as, false);
}

}  // namespace

void ResetPassState(Assembler& as) {
  StartListPass(as);
  as.EndSeen = false;
  as.InMacroExpansion = false;
  as.InIncludeFile = false;
  as.TotalBytes = 0;
  as.LineNumber = 0;
  as.Conditional.Reset();
  as.WarningCount = 0;
  as.ErrorCount = 0;
  as.UniqueLabelCounter = 0;
  as.Macros.StartPass();
  as.Percent.StartPass();
  as.SavedFromSourceValid = false;
  as.SequenceNumber = 0;
  RewindSegments(as);
  StartCStylePass(as);
  as.Reuse.StartPass();
}

bool AssembleFile(Assembler& as) {
  SetOptionFlag(as, as.opt.PredefinedSymbolsEnabled, 1);
  EnterAllPredefinedSymbols(as, false);
  as.DebugFileSeen = false;
  as.CurrentFileName = FullPath(as.SourceName);
  as.SourceStream = InputFile::Open(as.CurrentFileName, static_cast<char*>(as.Memory.Take(InputFile::kBufferSize)));
  if (as.SourceStream == nullptr) FatalExit(as, "Cannot open source file", as.CurrentFileName);
  RefuseOutputOverInput(as, *as.SourceStream);
  as.FilesRead.push_back(as.CurrentFileName);
  // Only now is the object name surely the object of this source: a typed
  // word taken for the source must not cost the file named after it.
  as.AssemblyStarted = true;
  OpenListFile(as);
  // The instruction stream writes and reads whole blocks of its own.
  as.SizeFile = OpenTemporary(as, as.SizeFileName, as.SizeFileExists, false);
  if (as.SourceName.find("zvtmp") == std::string::npos) std::fprintf(as.console.out, "%s\n", as.SourceName.c_str());
  as.RunTime = RunTimeText();
  DetectSequenceNumbers(as);
  if (as.Ft) CreatePredefinedSegments(as);
  SetFirstPassValues(as);
  RunFirstPass(as);
  as.SecondPass = 1;
  if (as.ErrorCount == 0) {
    RunSecondPass(as);
    if (as.opt.OBJ) {
      BuildObjectFile(as);
    } else if (as.FinalObjectStream != nullptr) {
      CloseObjectLeftByObjoff(as);
    }
    if (!as.NOLOGO) PrintClosingMessage(as);
    if (as.opt.LIST && as.opt.SYM) ListSymbolTable(as);
  }
  if (as.ErrorCount > 0) std::remove(as.ObjectName.c_str());
  as.SourceStream.reset();
  // A run that reaches its end returns: the first exception thrown in a
  // process makes the runtime sort the unwind tables, a cost every run paid.
  return as.ErrorCount == 0;
}

}  // namespace ta51
