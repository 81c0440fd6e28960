#include "core/diagnostics.h"

#include <cstdio>

namespace ta51 {

namespace {

bool ConsoleCopyWanted(const Assembler& as) { return as.ZvedCount == 0 && !as.ListIsConsole; }

void WriteText(FILE* stream, const std::string& text) {
  if (stream != nullptr && !text.empty()) std::fwrite(text.data(), 1, text.size(), stream);
}

// The current line with a caret in front of the character at the read offset.
std::string EchoOfLine(const Assembler& as) {
  std::string echo = as.Line.text;
  int32_t offset = as.Line.offset;
  if (offset >= 0 && static_cast<size_t>(offset) < echo.size()) echo.insert(echo.begin() + offset, '^');
  return echo;
}

void CloseAndRemove(Assembler& as, FILE*& file, bool& exists, const std::string& name, bool report) {
  if (file != nullptr) std::fclose(file);
  file = nullptr;
  if (exists && std::remove(name.c_str()) != 0 && report) std::fputs("Cannot delete temporary file\n", as.console.out);
  exists = false;
}

}  // namespace

// A message joins the list text in the list buffer. The list reaches its
// stream at once only where its order with the console shows: on the
// console itself; and before a fatal stop and at the end of the run.
void EmitMessage(Assembler& as, bool addNewline) {
  if (as.ListStream == nullptr) return;
  AppendToList(as, as.MessageBuffer);
  if (as.ListIsConsole) FlushListBuffer(as);
  if (!ConsoleCopyWanted(as)) return;
  WriteText(as.console.out, as.MessageBuffer);
  if (addNewline) std::fputc('\n', as.console.out);
  std::fflush(as.console.out);
}

int ReportError(Assembler& as, int number, bool withLine, std::string_view detail) {
  const CatalogueRow& row = CatalogueEntry(number);
  char header[64];
  std::snprintf(header, sizeof header, withLine ? "(%u): Error: " : ": Error: ", as.LineNumber);
  as.MessageBuffer.assign(1, '\n').append(as.CurrentFileName).append(header);
  if (number == 1) {
    as.MessageBuffer.append(detail);
  } else {
    if (row.text != nullptr) as.MessageBuffer += row.text;
    if (number == 73)
      as.MessageBuffer += as.UndefinedPublicName;
    else if (!detail.empty())
      as.MessageBuffer.append(" : ").append(detail);
  }
  ++as.ErrorCount;
  as.LineHasError = true;

  if (as.ListStream == nullptr) {
    // Only the command line reports before the list file exists.
    WriteText(as.console.out, as.MessageBuffer);
    std::fputc('\n', as.console.out);
    Terminate(as, false);
  }
  EmitMessage(as, true);
  AppendToList(as, "\n");
  ++as.LineCount;
  if (!row.noEcho) {
    as.MessageBuffer = EchoOfLine(as);
    AppendToList(as, as.MessageBuffer);
    if (ConsoleCopyWanted(as)) {
      WriteText(as.console.out, as.MessageBuffer);
      std::fflush(as.console.out);
    }
  }
  ++as.LineCount;
  if (as.ListIsConsole) FlushListBuffer(as);
  if (as.CL) Terminate(as, false);
  if (row.fatal) FatalExit(as, "Assembly terminated");
  return 0;
}

void ReportWarning(Assembler& as, int number) {
  const CatalogueRow& row = CatalogueEntry(number);
  char header[64];
  std::snprintf(header, sizeof header, "(%u): Warning: ", as.LineNumber);
  as.MessageBuffer.assign(1, '\n').append(as.CurrentFileName).append(header);
  if (row.text != nullptr) as.MessageBuffer += row.text;
  EmitMessage(as, true);
  if (as.ListStream != nullptr) AppendToList(as, "\n");
  if (as.ListIsConsole) FlushListBuffer(as);
  ++as.LineCount;
  if (as.WX) {
    ++as.ErrorCount;
    as.LineHasError = true;
  } else {
    ++as.WarningCount;
  }
}

void FatalExit(Assembler& as, std::string_view text, std::string_view detail) {
  FlushListBuffer(as);
  FILE* stream = as.console.out;
  if (as.ZvedCount != 0 || as.CL) stream = as.ListStream != nullptr ? as.ListStream : as.console.err;
  std::string message(text);
  if (!detail.empty()) message.append(" ").append(detail);
  message += '\n';
  WriteText(stream, message);
  std::fflush(stream);
  Terminate(as, false);
}

int ExitStatus(const Assembler& as, bool success) {
  if (!success) return 1;
  return as.WarningCount > 0 && as.ZvedCount != 0 ? 2 : 0;
}

void RemoveTemporaryFiles(Assembler& as) {
  CloseAndRemove(as, as.SizeFile, as.SizeFileExists, as.SizeFileName, true);
  if (as.ObjectStream == as.BodyFile) as.ObjectStream = nullptr;
  CloseAndRemove(as, as.BodyFile, as.BodyFileExists, as.BodyFileName, true);
}

[[noreturn]] void Terminate(Assembler& as, bool success) {
  RemoveTemporaryFiles(as);
  throw RunTerminated{success};
}

}  // namespace ta51
