// One assembly run: its settings, its files, the state of the pass and of the
// current line, and the subsystems. Nothing of a run lives outside this object,
// so a run can be repeated in-process with identical results.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/reuse_state.h"
#include "directives/bank_state.h"
#include "directives/control_state.h"
#include "directives/segment_entry.h"
#include "output/debug_state.h"
#include "platform/input_file.h"
#include "platform/platform.h"
#include "symbols/symbol_table.h"
#include "textlang/conditional_state.h"
#include "textlang/cstyle_state.h"
#include "textlang/macro_state.h"
#include "textlang/percent_state.h"

namespace ta51 {

// A switch whose low seven bits hold the value and whose bit 7 locks it.
struct OptionFlag {
  uint32_t bits = 0;
  int Value() const { return static_cast<int>(bits & 0x7F); }
  bool Locked() const { return (bits & 0x80) != 0; }
  explicit operator bool() const { return Value() != 0; }
};

struct OptionFlags {
  OptionFlag CLIST, MC, MD, MEX, OBJ, PAGE, SEQ, SYM, UNA, LIST, NOCASE, IHEX, LISTF;
  OptionFlag InPageOption, ProcessorMode, PredefinedSymbolsEnabled, DEBUG;
};

// The text of the current line and the shared read offset. The text always
// ends in a new line; reading past its end gives the terminating zero.
struct LineCursor {
  std::string text;
  int32_t offset = 0;

  // The zero behind the text is read as the end, like any place past it; a
  // negative position wraps to a huge one.
  char At(int32_t position) const {
    return static_cast<uint32_t>(position) <= text.size() ? text.data()[position] : '\0';
  }
  char Peek() const { return At(offset); }
  const char* Here() const { return Pointer(offset); }
  const char* Pointer(int32_t position) const {
    if (position < 0) position = 0;
    if (static_cast<size_t>(position) > text.size()) position = static_cast<int32_t>(text.size());
    return text.c_str() + position;
  }
};

// One relocatable field of a statement.
struct OperandSlot {
  std::string text;
  int8_t FixupSize = 0;
  int8_t FixupOffset = 0;
  int32_t FixupSpace = 2;

  void Clear() {
    text.clear();
    FixupOffset = 0;
  }
};
constexpr size_t kOperandSlotCapacity = 15360;
constexpr int8_t kWholeInstructionFixup = 20;
// Bytes that one DB or DW statement may store.
constexpr int32_t kDataStatementLimit = 256;

// The list layout that every pass starts from; FIELDS, PAGEWIDTH and PAGE
// change it from the line where they stand.
constexpr int32_t kDefaultLabelFieldWidth = 10;
constexpr int32_t kDefaultOpcodeFieldWidth = 10;
constexpr int32_t kDefaultOperandFieldWidth = 18;
constexpr int32_t kDefaultPageLength = 66;

// Thrown by Terminate; caught only by the entry point.
struct RunTerminated {
  bool success;
};

// Console streams of a run; tests replace them.
struct Console {
  FILE* out = stdout;
  FILE* err = stderr;
  FILE* in = stdin;
};

// The list file's text gathers here and reaches its stream in large writes:
// many small writes cost more than the text itself. Whatever else writes to
// the list stream empties it first (FlushListBuffer).
struct ListBuffer {
  static constexpr size_t kCapacity = 1 << 16;
  explicit ListBuffer(LargeBlockArena& memory) : data(static_cast<char*>(memory.Take(kCapacity))) {}
  char* data;
  size_t used = 0;
};

struct Assembler {
  explicit Assembler(Console streams) : console(streams) {}
  Assembler(const Assembler&) = delete;
  Assembler& operator=(const Assembler&) = delete;
  ~Assembler();

  // The run's buffers and tables live in large blocks (see LargeBlockArena),
  // given back when the run ends, after every member that uses them.
  LargeBlockArena Memory;
  Console console;

  // --- Settings of the command line -------------------------------------
  OptionFlags opt;
  bool CommandLinePhase = true;
  int32_t ZvedCount = 0;
  bool CL = false;
  bool NOLOGO = false;
  bool WX = false;
  bool Ft = false;
  std::optional<std::string> ModuleNameOption;
  std::vector<std::pair<std::string, std::string>> CommandLineDefines;  // `/DNAME=VALUE`
  int32_t ListSourceColumn = 22;
  int32_t LabelFieldWidth = kDefaultLabelFieldWidth;
  int32_t OpcodeFieldWidth = kDefaultOpcodeFieldWidth;
  int32_t OperandFieldWidth = kDefaultOperandFieldWidth;
  int32_t ListLineLimit = 0;
  int32_t PageWidth = 80;
  int32_t PageLength = kDefaultPageLength;
  bool PercentDialect = false;

  // --- Files ----------------------------------------------------------
  std::string SourceName, ObjectName, ListName;
  std::vector<std::string> FilesRead;  // the source and its include files, for --depfile
  std::string CurrentFileName;
  std::unique_ptr<InputFile> SourceStream;
  StreamBuffers Buffers{Memory};  // of the streams below; freed after they are closed
  FILE* ListStream = nullptr;
  ListBuffer ListPending{Memory};  // text of ListStream not yet handed to it
  bool ListIsConsole = false;  // ListName is "CON.LST"
  FILE* SizeFile = nullptr;
  std::string SizeFileName;
  bool SizeFileExists = false;
  FILE* ObjectStream = nullptr;
  FILE* BodyFile = nullptr;
  std::string BodyFileName;
  bool BodyFileExists = false;
  FILE* FinalObjectStream = nullptr;
  std::string RunTime;  // ctime form, 24 characters

  // --- Run state --------------------------------------------------------
  int32_t ErrorCount = 0;
  int32_t WarningCount = 0;
  uint32_t TotalBytes = 0;
  int32_t SecondPass = 0;
  bool EndSeen = false;
  bool InIncludeFile = false;
  uint32_t LineNumber = 0;
  bool SequenceNumbered = false;
  int64_t SequenceNumber = 0;
  int32_t NextExternalIndex = 1;
  int32_t NextDebugNumber = 40000;
  int32_t NextDebugTypeNumber = 40000;
  std::string ModuleName, ModuleFileName;
  int32_t UniqueLabelCounter = 0;
  bool InMacroExpansion = false;
  bool FromSourceFile = true;
  bool DebugFileSeen = false;
  DebugState Debug;  // line table, source marks, debug blocks written
  bool NameIsSet = false;
  std::string ExplicitModuleName;
  std::string TitleText;
  std::vector<std::string> LibraryList;    // INCLUDELIB names, for the LI record
  std::vector<std::string> NoOverlayList;  // __NOOVL names of both passes, for NV records
  bool RegisterBankUsed[4] = {false, false, false, false};
  bool Additions8052Entered[2] = {false, false};  // upper, lower case half
  int32_t IncludeDepth = 0;
  bool AssemblyStarted = false;  // files may exist from here on

  // --- List file page state --------------------------------------------
  int32_t PageNumber = 0;
  int32_t LineCount = 0;
  bool NewPageWanted = false;
  bool WidthChanged = false;

  // --- Per-line state ---------------------------------------------------
  LineCursor Line;
  int32_t LabelOffset = 0, OpcodeOffset = 0, OperandOffset = 0, CommentOffset = 0;
  bool LineHasLabel = false;
  bool LineHasError = false;
  bool ShowLineValue = true;
  bool ListThisLine = true;
  int32_t LineValue = 0;
  bool BlankLine = false;
  bool CommentLine = false;
  bool SavedBytesFlag = false;
  bool NeedsSizeByte = false;
  uint8_t CodeBuffer[3] = {0, 0, 0};
  int32_t CodeLength = 0;
  OperandSlot OperandSlot1, OperandSlot2;
  int32_t OperandValue = 0;
  uint32_t ItemCount = 1, ItemSize = 1;
  bool ItemIsText = false;
  std::string OpcodeWord;
  std::array<uint8_t, kDataStatementLimit> DataListBuffer{};  // bytes of a DB or DW for the list

  // --- Facts of the last expression -------------------------------------
  bool ExprUndefined = false;
  bool ExprRelocatable = false;
  int32_t ExprRelocCount = 0;
  int32_t ExprType = T_NUMBER;
  SegmentEntry* ExprSegment = nullptr;
  int32_t ExprTermCount = 0;
  int32_t ExprSegmentOffset = 0;
  bool ExprOperated = false;
  bool ExprAdditiveOnly = true;
  bool SegmentOperandWanted = false;
  bool SimpleRelocOnly = false;
  int ExprToken = 0;
  int32_t ExprDepth = 0;  // nesting guard of the evaluator

  // --- Symbols ------------------------------------------------------------
  SymbolTable Symbols{Memory};
  std::string NameBuffer;
  SymbolEntry* FoundSymbol = nullptr;

  // --- Segments -----------------------------------------------------------
  SegmentTable Segments;
  SegmentEntry* CurrentSegment = nullptr;
  SegmentEntry* AbsCodeSegment = nullptr;
  SegmentEntry* AbsDataSegment = nullptr;
  SegmentEntry* AbsXdataSegment = nullptr;
  SegmentEntry* AbsIdataSegment = nullptr;
  SegmentEntry* AbsBitSegment = nullptr;
  BankState Banks;

  // --- Instructions the second pass takes from the first ----------------
  StatementReuse Reuse;

  // --- Conditional assembly and control statements ---------------------
  ConditionalState Conditional;
  ControlState Controls;

  // --- Line reader --------------------------------------------------------
  std::string Accumulator;
  bool SavedFromSourceValid = false;
  bool SavedFromSource = true;

  // --- MACRO language ---------------------------------------------------------
  MacroState Macros;

  // --- C-style preprocessor -------------------------------------------------
  CStyleProcessor CStyle;
  // --- Percent macro language -------------------------------------------------
  PercentMacroEngine Percent;

  // --- Diagnostics ----------------------------------------------------------
  std::string MessageBuffer;
  std::string UndefinedPublicName;  // handed over for error 73
};

// Hands the gathered list text to the list stream.
inline void FlushListBuffer(Assembler& as) {
  ListBuffer& buffer = as.ListPending;
  if (buffer.used != 0 && as.ListStream != nullptr) std::fwrite(buffer.data, 1, buffer.used, as.ListStream);
  buffer.used = 0;
}

// Appends to the list buffer; text larger than the buffer goes straight on.
inline void AppendToList(Assembler& as, std::string_view text) {
  ListBuffer& buffer = as.ListPending;
  if (text.size() > ListBuffer::kCapacity - buffer.used) {
    FlushListBuffer(as);
    if (text.size() > ListBuffer::kCapacity) {
      if (as.ListStream != nullptr) std::fwrite(text.data(), 1, text.size(), as.ListStream);
      return;
    }
  }
  std::memcpy(buffer.data + buffer.used, text.data(), text.size());
  buffer.used += text.size();
}

}  // namespace ta51
