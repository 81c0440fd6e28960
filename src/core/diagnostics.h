// Every complaint of the assembler: numbered errors and warnings from the
// catalogue, fatal stops with free text, and the end of a run.
#pragma once

#include <string_view>

#include "core/assembler.h"

namespace ta51 {

struct CatalogueRow {
  int number;
  const char* text;  // nullptr: no row
  bool fatal;
  bool noEcho;
};

// The catalogue row of a number, or a row with no text.
const CatalogueRow& CatalogueEntry(int number);

// Reports error `number`; result 0, so handlers may return it.
int ReportError(Assembler& as, int number, bool withLine = true, std::string_view detail = {});
void ReportWarning(Assembler& as, int number);
[[noreturn]] void FatalExit(Assembler& as, std::string_view text, std::string_view detail = {});
void EmitMessage(Assembler& as, bool addNewline);
// Ends the run: removes the size file and unwinds to the entry point.
[[noreturn]] void Terminate(Assembler& as, bool success);
// The exit status that Terminate would give.
int ExitStatus(const Assembler& as, bool success);
// Removes the temporary files of a run; used on every way out.
void RemoveTemporaryFiles(Assembler& as);

}  // namespace ta51
