// Prints a libFuzzer dictionary (-dict=) of every keyword of the language,
// read from the assembler's own keyword tables, so that the dictionary grows
// with the language and a mutation can put two keywords side by side:
//
//   ta51_make_dictionary > ta51.dict
//
// Words of the opcode field (mnemonics, directives, IF and END keywords,
// options, MACRO/EQU/SET) and word operators (AND, SHL, HIGH ...) come with
// a blank on either side, as they stand in a statement. An option keyword is
// a whole statement, so it comes as a whole line too, "\n\tBIN\n;": inserted
// at the end of a line or inside a comment it adds a statement of its own
// and turns the rest of that line into a comment, so the source stays free
// of errors and reaches the second pass, where " BIN " would mostly spoil
// the line it lands in. Dollar controls come at the start of a line, and so
// do the C-style directives, behind their `#`; the others (percent keywords
// and functions, the words LOCAL, THEN, ELSE, FI and %' of the percent
// language, registers, predefined names, symbol operators, segment and
// EXTRN types, the words of the BANK clause, `defined` and `##`) as they
// are spelt; the words that lead lines of a __DEBUG block at the start of a
// line. Each entry appears once.

#include <cstdio>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "directives/banks.h"
#include "directives/debug_directives.h"
#include "directives/definitions.h"
#include "directives/segments.h"
#include "core/keyword_tables.h"
#include "core/option_keywords.h"
#include "isa/encoder.h"
#include "isa/predefined.h"
#include "symbols/symbols.h"
#include "symbols/tokens.h"
#include "textlang/cstyle_words.h"
#include "textlang/percent.h"

namespace {

class Dictionary {
 public:
  void Word(std::string_view word, bool padded) {
    std::string entry;
    if (padded) entry += ' ';
    entry.append(word);
    if (padded) entry += ' ';
    Entry(entry);
  }

  // `before` + word + `after`, e.g. a whole line.
  void Framed(std::string_view before, std::string_view word, std::string_view after) {
    std::string entry(before);
    entry.append(word).append(after);
    Entry(entry);
  }

  template <typename Row>
  void Table(std::span<const Row> rows, bool padded) {
    for (const Row& row : rows) Word(row.keyword, padded);
  }

 private:
  std::set<std::string> seen_;

  void Entry(const std::string& entry) {
    if (!seen_.insert(entry).second) return;
    std::string line = "\"";
    for (char c : entry) {
      if (c == '"' || c == '\\') {
        line += '\\';
        line += c;
      } else if (c < 0x20 || c > 0x7E) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned char>(c));
        line += escaped;
      } else {
        line += c;
      }
    }
    line += "\"\n";
    std::fputs(line.c_str(), stdout);
  }
};

}  // namespace

int main() {
  using namespace ta51;
  Dictionary d;
  for (const Mnemonic& mnemonic : kMnemonics) d.Word(mnemonic.word, true);
  for (const KeywordTable* table : {&kDataDirectives, &kGeneralDirectives, &kIfKeywords, &kEndKeywords,
                                    &kDefiningKeywords})
    d.Table(table->rows, true);
  d.Table(OptionKeywords(), true);
  for (const OptionRow& row : OptionKeywords()) d.Framed("\n\t", row.keyword, "\n;");
  for (const KeywordRow& row : kDollarControls) d.Framed("\n", row.keyword, "");
  d.Table(kPercentKeywords.rows, false);
  d.Table(kPercentFunctions.rows, false);
  for (std::string_view word : kPercentLanguageWords) d.Word(word, false);
  for (const char* name : kRegisterNames) d.Word(name, false);
  for (std::span<const PredefinedName> table : kPredefinedTables)
    for (const PredefinedName& row : table) d.Word(row.name, false);
  for (const OperatorRow& row : OperatorTable()) d.Word(row.spelling, row.word);
  for (std::string_view name : ReservedNames()) d.Word(name, false);
  d.Table(SegmentTypeKeywords(), false);
  d.Table(SegmentAlignmentKeywords(), false);
  d.Table(ExternTypes(), false);
  d.Table(BankClauseKeywords(), false);
  for (const KeywordRow& row : DebugBlockWords()) d.Framed("\n", row.keyword, "");
  for (const KeywordRow& row : kCStyleDirectiveRows) d.Framed("\n#", row.keyword, " ");
  d.Word(kCDefinedOperator, true);
  d.Word("##", false);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
