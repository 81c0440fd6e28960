// The operator table of expressions and the tokenizer that reads it.
#include "symbols/tokens.h"

#include <string_view>

#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "textlang/textlang.h"

namespace ta51 {

std::span<const OperatorRow> OperatorTable() { return kOperators; }

std::string_view OperatorText(int code) {
  for (const OperatorRow& row : kOperators)
    if (row.code == code) return row.text;
  return {};
}

int ScanTokenAnyCharacter(Assembler& as, bool skipBlanks) {
  LineCursor& line = as.Line;
  if (skipBlanks) {
    int32_t start = line.offset;
    while (line.Peek() == ' ' || line.Peek() == '\t') ++line.offset;
    // A word of a macro body is rewritten when the reader reaches it.
    if (line.offset != start && as.InMacroExpansion && as.ExprToken != ';')
      SubstituteParameters(as, line.offset, true);
  }
  if (const OperatorRow* row = MatchOperator(line.Here(), IsNameChar)) {
    line.offset += static_cast<int32_t>(row->spelling.size());
    return as.ExprToken = row->code;
  }
  int token = static_cast<int>(static_cast<signed char>(line.Peek()));
  ++line.offset;
  return as.ExprToken = token;
}

}  // namespace ta51
