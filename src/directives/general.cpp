#include "directives/general.h"

#include <algorithm>
#include <string>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "output/list_file.h"
#include "symbols/expression.h"

namespace ta51 {

namespace {

// A module name ends at the 260th character, with its end mark in the record.
constexpr size_t kModuleNameLimit = 259;
constexpr size_t kTitleLimit = 99;
// More empty lines than this in one SPC is a mistake, not a layout.
constexpr uint32_t kSpaceLimit = 255;

bool EndsWord(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\0'; }

// `"two words"` keeps its blank; a bare name stops at white space.
std::string ReadModuleNameText(Assembler& as) {
  LineCursor& line = as.Line;
  std::string name;
  bool quoted = line.Peek() == '"';
  if (quoted) ++line.offset;
  while (name.size() < kModuleNameLimit) {
    char c = line.Peek();
    if (c == '\n' || c == '\0') break;
    if (quoted ? c == '"' : IsWhiteSpace(c)) break;
    name += c;
    ++line.offset;
  }
  if (quoted && line.Peek() == '"') ++line.offset;
  return name;
}

// The word at the read offset up to a blank, a tab or the new line; quotes
// are part of it.
std::string ReadWord(Assembler& as) {
  std::string word;
  for (int32_t at = as.Line.offset; !EndsWord(as.Line.At(at)); ++at) word += as.Line.At(at);
  return word;
}

bool HasOperand(const Assembler& as) {
  char c = as.Line.Peek();
  return c != '\n' && c != '\0' && c != ';';
}

}  // namespace

int NameDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  as.ShowLineValue = false;
  if (as.InIncludeFile && as.SecondPass) ReportWarning(as, 71);
  if (!as.InIncludeFile && !as.SecondPass && as.NameIsSet) return ReportError(as, 45);
  std::string name = ReadModuleNameText(as);
  // An empty name would give the module no name at all.
  if (name.empty()) return ReportError(as, 16);
  if (!as.InIncludeFile) {
    as.ExplicitModuleName = name;
    as.NameIsSet = true;
  }
  return kResultNoLabel;
}

int TitleDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  as.ShowLineValue = false;
  LineCursor& line = as.Line;
  auto end = static_cast<int32_t>(line.text.find('\n', static_cast<size_t>(line.offset)));
  if (end < 0) end = static_cast<int32_t>(line.text.size());
  if (as.SecondPass)
    as.TitleText = line.text.substr(static_cast<size_t>(line.offset),
                                    std::min(kTitleLimit, static_cast<size_t>(end - line.offset)));
  line.offset = end;
  return kResultNoLabel;
}

int FailDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  if (as.SecondPass) ReportWarning(as, 69);
  as.ShowLineValue = false;
  return kResultDone;
}

int PageDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  if (!HasOperand(as)) {
    as.NewPageWanted = true;
    as.ShowLineValue = false;
    as.ListThisLine = false;
    return kResultNoLabel;
  }
  int32_t length = EvaluateAbsolute(as);
  if (as.LineHasError) return 0;
  as.PageLength = length;
  as.LineValue = length;
  return kResultNoLabel;
}

int SpaceDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  as.ListThisLine = false;
  if (!as.opt.LIST) return kResultNoLabel;
  auto count = static_cast<uint32_t>(EvaluateAbsolute(as));
  if (as.LineHasError) return 0;
  if (count > kSpaceLimit) return ReportError(as, 28);
  for (uint32_t n = 0; n < count; ++n) {
    if (as.opt.PAGE && as.LineCount >= as.PageLength) break;
    ListBlankLine(as);
  }
  return kResultNoLabel;
}

int IncludeLibraryDirective(Assembler& as) {
  if (as.LineHasLabel) return ReportError(as, 56);
  as.ShowLineValue = false;
  std::string name = ReadWord(as);
  if (name.empty()) return ReportError(as, 16);
  as.Line.offset += static_cast<int32_t>(name.size());
  if (!as.SecondPass) as.LibraryList.push_back(std::move(name));
  return kResultNoLabel;
}

// Both passes add the name, so each stands twice in the module; the read
// offset stays where it is.
int NoOverlayDirective(Assembler& as) {
  as.ShowLineValue = false;
  as.ListThisLine = false;
  std::string name = ReadWord(as);
  if (name.empty()) return ReportError(as, 16);
  as.NoOverlayList.push_back(std::move(name));
  return kResultDone;
}

}  // namespace ta51
