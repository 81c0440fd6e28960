// Option keywords: command line, OPT statements and alone as a statement.
// The driver owns the table and its effects; OPT and the list controls use
// them from here.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/assembler.h"

namespace ta51 {

constexpr int kNoOption = -1;

struct OptionRow {
  const char* keyword;
  int code;
};
// The option keywords, for tools that list the words of the language.
std::span<const OptionRow> OptionKeywords();

// The code of an option keyword, case ignored, or kNoOption.
int FindOption(std::string_view word);
// The same with KeywordHash(word) computed by the caller.
int FindOption(std::string_view word, uint32_t hash);
// Applies an option code; the statement result (2), or 0 after an error.
int ProcessOption(Assembler& as, int code);
int SetOptionFlag(Assembler& as, OptionFlag& flag, int value);

}  // namespace ta51
