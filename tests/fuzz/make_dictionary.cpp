// Prints a libFuzzer dictionary (-dict=) of every keyword of the language,
// read from the assembler's own keyword tables, so that the dictionary grows
// with the language and a mutation can put two keywords side by side:
//
//   ta51_make_dictionary > ta51.dict
//
// Words of the opcode field (mnemonics, directives, IF and END keywords,
// options, MACRO/EQU/SET) and word operators (AND, SHL, HIGH ...) come with
// a blank on either side, as they stand in a statement; the others
// (controls, percent keywords, registers, predefined names, symbol
// operators, segment and EXTRN types) as they are spelt. Each entry
// appears once.

#include <cstdio>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "directives/definitions.h"
#include "directives/segments.h"
#include "driver/keywords.h"
#include "driver/options.h"
#include "isa/encoder.h"
#include "isa/predefined.h"
#include "symbols/symbols.h"
#include "symbols/tokens.h"

namespace {

class Dictionary {
 public:
  void Word(std::string_view word, bool padded) {
    std::string entry;
    if (padded) entry += ' ';
    entry.append(word);
    if (padded) entry += ' ';
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

  template <typename Row>
  void Table(std::span<const Row> rows, bool padded) {
    for (const Row& row : rows) Word(row.keyword, padded);
  }

 private:
  std::set<std::string> seen_;
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
  d.Table(kDollarControls.rows, false);
  d.Table(kPercentKeywords.rows, false);
  for (const char* name : kRegisterNames) d.Word(name, false);
  for (std::span<const PredefinedName> table : kPredefinedTables)
    for (const PredefinedName& row : table) d.Word(row.name, false);
  for (const OperatorRow& row : OperatorTable()) d.Word(row.spelling, row.word);
  for (std::string_view name : ReservedNames()) d.Word(name, false);
  d.Table(SegmentTypeKeywords(), false);
  d.Table(SegmentAlignmentKeywords(), false);
  d.Table(ExternTypes(), false);
  return std::fflush(stdout) == 0 ? 0 : 1;
}
