// The run state of debug records: the line table that the DEBUG option
// gathers, the marks of __SFILE and __SLINE, and the numbers and flags of the
// blocks that are written once per module. The counters NextDebugNumber and
// NextDebugTypeNumber and the flag DebugFileSeen are run state of the
// Assembler.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace ta51 {

struct BankRecord;

// Where a line's code starts: an absolute address, or an offset in a
// relocatable segment.
struct CodeAddress {
  int32_t segmentNumber = 0;
  uint32_t location = 0;
  bool absolute = false;
};

// One entry of SourceMarkList, made by __SFILE (a file) or __SLINE (a line).
struct SourceMark {
  bool isFile = false;
  int32_t line = 0;
  const BankRecord* bank = nullptr;
  CodeAddress address;
  std::string fileName;  // of a file mark
};

// One entry of DebugLineTable: a source line and the address of its code.
struct LineEntry {
  uint32_t line = 0;
  uint32_t file = 0;  // index into DebugState::LineFiles
  CodeAddress address;
};

struct DebugState {
  std::vector<SourceMark> SourceMarkList;
  bool FileMarkSeen = false;  // a __SFILE stood ahead in the first pass

  // The line table, in order of code, and the files it names, each once.
  std::vector<LineEntry> DebugLineTable;
  std::vector<std::string> LineFiles;

  // A percent call line waits for the first instruction of its expansion.
  bool PercentLinePending = false;
  uint32_t PendingLine = 0;

  // Type numbers of DATA, CODE, XDATA, IDATA, an unused one and BIT.
  std::array<int32_t, 6> DebugTypeTable{};
  bool TypeBlockWritten = false;
  bool ConstantBlockWritten = false;
};

}  // namespace ta51
