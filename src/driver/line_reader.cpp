// The source line reader: physical lines with their breaks and continuations,
// comment lines, sequence numbers, and INCLUDE with its saved frame.
#include "driver/line_reader.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "core/diagnostics.h"
#include "driver/pass.h"
#include "output/list_file.h"
#include "platform/platform.h"
#include "symbols/symbols.h"
#include "textlang/cstyle.h"
#include "textlang/macro.h"
#include "textlang/percent.h"

namespace ta51 {

namespace {

// Longest logical line. Real sources stay far below it; a longer one is
// taken as a damaged or binary file.
constexpr size_t kMaxLineLength = 65536;
// Deepest nesting of INCLUDE; a file that includes itself stops here.
constexpr int kMaxIncludeDepth = 64;
constexpr size_t kMaxSequenceDigits = 32;

[[noreturn]] void RejectInput(Assembler& as, const char* why) {
  as.Line.text = as.Accumulator.substr(0, 80) + "\n";
  as.Line.offset = 0;
  ReportError(as, 14, true, why);
  FatalExit(as, "Assembly terminated");  // not reached: error 14 is fatal
}

// Reads through one line break: all carriage returns and at most one line
// feed. False when the file ended inside the break.
bool ConsumeLineBreak(InputFile& in, int first) {
  bool sawLineFeed = first == '\n';
  while (true) {
    int c = in.Get();
    if (c == InputFile::kEnd) return false;
    if (c == '\r') continue;
    if (c == '\n' && !sawLineFeed) {
      sawLineFeed = true;
      continue;
    }
    in.Unget(c);
    return true;
  }
}

// One physical line, with continuation lines joined, into the accumulator.
// False only when the file had nothing left.
bool ReadPhysicalLine(Assembler& as) {
  std::string& text = as.Accumulator;
  text.clear();
  InputFile& in = *as.SourceStream;
  bool continuation = false;  // blanks at the start of a joined line are dropped
  bool consumed = false;
  for (;;) {
    if (!continuation && in.AppendPlainRun(text) != 0) consumed = true;
    if (text.size() > kMaxLineLength) RejectInput(as, "source line longer than 65536 characters");
    int c = in.Get();
    if (c == InputFile::kEnd) return consumed;
    consumed = true;
    if (c == '\r' || c == '\n') {
      bool more = ConsumeLineBreak(in, c);
      if (text.empty() || !more || text.back() != '\\') return true;
      text.pop_back();
      ++as.LineNumber;
      continuation = true;
      continue;
    }
    if (c == '\0') RejectInput(as, "NUL character in source line");
    if (continuation && IsWhiteSpace(static_cast<char>(c))) continue;
    continuation = false;
    text += static_cast<char>(c);
  }
}

// Lines that are wholly comment are dropped; `inComment` carries an open
// comment from line to line within one call. A comment line is one whose
// first character that is not white space opens a comment, so only the
// start of the line is looked at. The line that closes a comment is dropped
// unless a new comment opens behind the close.
bool IsDroppedAsComment(const std::string& text, bool& inComment) {
  if (inComment) {
    size_t close = text.find("*/");
    if (close == std::string::npos) return true;
    inComment = false;
    return text.find("/*", close) == std::string::npos;
  }
  size_t first = 0;
  while (first < text.size() && IsWhiteSpace(text[first])) ++first;
  if (text.compare(first, 2, "/*") != 0) return false;
  if (text.find("*/", first + 2) == std::string::npos) inComment = true;
  return true;
}

// A sequence-numbered line starts with its number and one blank; the text
// behind them is the statement, first column included.
void TakeSequenceNumber(Assembler& as) {
  std::string& text = as.Line.text;
  size_t digits = 0;
  int64_t value = 0;
  while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
    if (digits == kMaxSequenceDigits) {
      ReportError(as, 6);
      break;
    }
    if (value < (INT64_MAX - 9) / 10) value = value * 10 + (text[digits] - '0');
    ++digits;
  }
  while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') ++digits;
  if (value <= as.SequenceNumber) ReportError(as, 30);
  as.SequenceNumber = value;
  if (digits < text.size() && IsBlank(text[digits])) ++digits;
  text.erase(0, digits);
  as.Line.offset = 0;
}

void SetLineFlags(Assembler& as) {
  const std::string& text = as.Line.text;
  const char first = text.empty() ? '\0' : text[0];
  as.CommentLine = first == ';' || (first == '/' && text.size() > 1 && text[1] == '/');
  size_t at = 0;
  while (at < text.size() && (IsBlank(text[at]) || text[at] == '\n')) ++at;
  as.BlankLine = at == text.size();
  if (as.BlankLine) as.ShowLineValue = false;
}

// Whether some state of the run may act on the next line of the file: a
// percent expansion running or skipping, a macro body, an open comment,
// C-style macros or a dropped section, sequence numbers. Without any, a
// plain line goes from the buffer straight to the statement.
// The flags are combined without branches: all are clear on nearly every line.
bool NeedsFullReader(const Assembler& as) {
  return (as.SavedFromSourceValid | as.InMacroExpansion | as.CStyle.CommentOpen | as.SequenceNumbered |
          static_cast<int>(PercentExpansionRunning(as)) | static_cast<int>(SkippingPercentLines(as))) != 0 ||
         as.CStyle.Engaged();
}

// A simple line (ended by its line feed) that no stage of the reader drops
// or changes: its first character that is not blank is no other white
// space, no # and does not open a comment. Such a line is never blank.
bool IsPlainLine(std::string_view line) {
  size_t first = 0;
  while (line[first] == ' ' || line[first] == '\t') ++first;
  const char lead = line[first];
  if ((lead >= '\n' && lead <= '\r') || lead == '#') return false;
  return lead != '/' || line[first + 1] != '*';
}

// The general reader: every stage, for the lines the fast path leaves.
bool FetchLineFully(Assembler& as) {
  // A running percent expansion is served first. Its lines count for no
  // line of the file, until a line of the file or a macro body comes again.
  if (PercentExpansionRunning(as) && NextPercentLine(as, as.Line.text)) {
    as.Line.offset = 0;
    if (!as.SavedFromSourceValid) {
      as.SavedFromSource = as.FromSourceFile;
      as.SavedFromSourceValid = true;
    }
    as.FromSourceFile = false;
    SetLineFlags(as);
    return true;
  }
  if (as.SavedFromSourceValid) {
    as.FromSourceFile = as.SavedFromSource;
    as.SavedFromSourceValid = false;
  }
  as.Line.offset = 0;
  if (as.InMacroExpansion) {
    if (!NextMacroBodyLine(as, as.Line.text)) return false;
    SetLineFlags(as);
    return true;
  }
  bool inComment = std::exchange(as.CStyle.CommentOpen, false);
  while (true) {
    if (!as.SourceStream->TakeSimpleLine(as.Accumulator)) {
      if (!ReadPhysicalLine(as)) return false;
      as.Accumulator += '\n';
    }
    // The percent filter drops its lines ahead of the C-style stage.
    if (!IsDroppedAsComment(as.Accumulator, inComment) && !SkippingPercentLines(as)) {
      as.Line.text.swap(as.Accumulator);  // the accumulator is refilled next time
      if (!CStyleMayAct(as) || RunCStyleStage(as, inComment)) break;
    }
    ++as.LineNumber;
  }
  if (as.SequenceNumbered) TakeSequenceNumber(as);
  SetLineFlags(as);
  return true;
}

// Copies `line` to `to`; most lines take two moves of eight bytes instead of a call.
void CopyShortLine(char* to, std::string_view line) {
  const size_t count = line.size();
  if (count < 8 || count > 16) {
    std::memcpy(to, line.data(), count);
    return;
  }
  uint64_t head, tail;
  std::memcpy(&head, line.data(), sizeof head);
  std::memcpy(&tail, line.data() + count - sizeof tail, sizeof tail);
  std::memcpy(to, &head, sizeof head);
  std::memcpy(to + count - sizeof tail, &tail, sizeof tail);
}

// The fast path of the reader: a plain line of the file, copied from the
// buffer into the line with the flags SetLineFlags gives a line that is not
// blank. False leaves everything as it was, for FetchLineFully.
inline bool TakePlainLine(Assembler& as) {
  if (NeedsFullReader(as)) return false;
  InputFile& in = *as.SourceStream;
  const std::string_view line = in.PeekSimpleLine();
  if (line.empty() || !IsPlainLine(line)) return false;
  in.Skip(line.size());
  std::string& text = as.Line.text;
  // A line no longer than the last is copied in place: only its length is
  // stored, which is cheaper than the general assign.
  if (line.size() <= text.size()) {
    text.resize(line.size());
    CopyShortLine(text.data(), line);
  } else {
    text.assign(line.data(), line.size());
  }
  as.Line.offset = 0;
  as.CommentLine = line[0] == ';' || (line[0] == '/' && line[1] == '/');
  as.BlankLine = false;
  return true;
}

// FetchCountedLine for the lines the fast path leaves. Kept out of line, so
// that the fast path does not pay for its registers.
[[gnu::noinline]] bool FetchCountedLineFully(Assembler& as, bool keepCountAtEnd) {
  const bool counted = as.FromSourceFile;
  if (counted) ++as.LineNumber;
  if (!FetchLineFully(as)) {
    if (counted && !keepCountAtEnd) --as.LineNumber;
    return false;
  }
  // The reader may have gone from a percent expansion back to the file, or
  // into an expansion: the line counts by where it came from.
  if (counted != as.FromSourceFile) as.LineNumber += as.FromSourceFile ? 1 : -1;
  return true;
}

}  // namespace

bool FetchLine(Assembler& as) { return TakePlainLine(as) || FetchLineFully(as); }

bool FetchCountedLine(Assembler& as, bool keepCountAtEnd) {
  // A plain line comes from the file and raises no report.
  if (TakePlainLine(as)) {
    if (as.FromSourceFile) ++as.LineNumber;
    return true;
  }
  return FetchCountedLineFully(as, keepCountAtEnd);
}

void RefuseOutputOverInput(Assembler& as, const InputFile& input) {
  const bool listOver = !as.ListIsConsole && input.IsNamedBy(as.ListName);
  if (!listOver && !input.IsNamedBy(as.ObjectName)) return;
  std::fputs("Source filename duplicated as output filename\n", as.console.out);
  as.ObjectName.clear();  // a failed run removes its object file, and this one is a source
  Terminate(as, false);
}

namespace {

struct IncludeFrame {
  std::unique_ptr<InputFile> stream;
  std::string fileName;
  bool inIncludeFile;
  uint32_t lineNumber;
  int64_t sequenceNumber;
  int32_t conditionalDepth;
  int32_t controlConditionalDepth;
  SymbolTable::ScopeId fileScope;
};

IncludeFrame SaveFrame(Assembler& as) {
  return IncludeFrame{std::move(as.SourceStream), as.CurrentFileName, as.InIncludeFile,
                      as.LineNumber, as.SequenceNumber, as.Conditional.Depth,
                      as.Conditional.ControlDepth, as.Symbols.CurrentFileScope()};
}

void RestoreFrame(Assembler& as, IncludeFrame& frame) {
  as.SourceStream = std::move(frame.stream);
  as.CurrentFileName = frame.fileName;
  as.InIncludeFile = frame.inIncludeFile;
  as.LineNumber = frame.lineNumber;
  as.SequenceNumber = frame.sequenceNumber;
  as.Conditional.Depth = frame.conditionalDepth;
  as.Conditional.ControlDepth = frame.controlConditionalDepth;
  as.Symbols.SetCurrentFileScope(frame.fileScope);
}

struct IncludeName {
  std::string name;
  bool angled = false;
  bool valid = false;
};

IncludeName ReadIncludeName(Assembler& as) {
  std::string rest = as.Line.text.substr(static_cast<size_t>(as.Line.offset));
  IncludeName result;
  size_t end;
  // A quoted or angled name (as #include gives it) reads alike in both dialects.
  bool quoted = !rest.empty() && (rest[0] == '"' || rest[0] == '<');
  if (as.PercentDialect && !quoted) {
    end = rest.find(')');
    if (end == std::string::npos || end == 0) {
      ReportError(as, 5);
      return result;
    }
    result.name = rest.substr(1, end - 1);
  } else if (quoted) {
    char closing = rest[0] == '"' ? '"' : '>';
    end = rest.find(closing, 1);
    if (end == std::string::npos) {
      ReportError(as, closing == '"' ? 100 : 101);
      return result;
    }
    result.name = rest.substr(1, end - 1);
    result.angled = closing == '>';
  } else {
    result.name = rest.substr(0, rest.find_first_of(" \t\n"));
  }
  result.valid = true;
  return result;
}

// Searches the directories of the INCLUDE variable, separated by `:`.
std::unique_ptr<InputFile> OpenFromSearchPath(Assembler& as, const std::string& name) {
  const char* variable = GetEnvironment("INCLUDE");
  if (variable == nullptr) return nullptr;
  std::string list = variable;
  size_t start = 0;
  while (start <= list.size()) {
    size_t end = list.find(':', start);
    std::string piece = list.substr(start, end == std::string::npos ? std::string::npos : end - start);
    if (!piece.empty() && piece.back() == '/') piece.pop_back();
    std::string joined = piece + "/" + name;
    if (FileExists(joined)) {
      auto stream = InputFile::Open(joined);
      if (stream != nullptr) {
        as.CurrentFileName = joined;
        return stream;
      }
    }
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return nullptr;
}

void ReadIncludedFile(Assembler& as, const IncludeName& include) {
  as.Conditional.Depth = 0;
  as.SequenceNumber = 0;
  as.LineNumber = 0;
  if (!include.angled) as.SourceStream = InputFile::Open(as.CurrentFileName);
  if (as.SourceStream == nullptr) as.SourceStream = OpenFromSearchPath(as, include.name);
  if (as.SourceStream == nullptr) FatalExit(as, "Cannot open include file", include.name);
  RefuseOutputOverInput(as, *as.SourceStream);
  if (!as.SecondPass) as.FilesRead.push_back(as.CurrentFileName);
  as.InIncludeFile = true;
  OpenFileScope(as);
  ++as.IncludeDepth;
  PercentFloorGuard percentFloor(as);
  AssemblePass(as);
  --as.IncludeDepth;
  as.SourceStream.reset();
  if (!as.SecondPass) CloseFileScope(as);
}

}  // namespace

int ProcessInclude(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  if (as.InMacroExpansion) return ReportError(as, 57);
  if (as.IncludeDepth >= kMaxIncludeDepth) {
    ReportError(as, 14, true, "INCLUDE files nested more than 64 deep");
    return 0;
  }
  IncludeName include = ReadIncludeName(as);
  if (!include.valid) return 0;
  IncludeFrame frame = SaveFrame(as);
  SkipBlanks(as);
  as.CommentOffset = as.Line.offset;
  as.ShowLineValue = false;
  // Listed under the name of its own file: a page that starts here names
  // the file that holds the INCLUDE.
  if (as.opt.LIST) ListLine(as);
  as.CurrentFileName = FullPath(include.name);
  ReadIncludedFile(as, include);
  RestoreFrame(as, frame);
  as.ListThisLine = false;
  return 13;
}

}  // namespace ta51
