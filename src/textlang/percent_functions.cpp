// The functions of the percent language inside operand expressions: %EVAL
// of an expression, the six comparisons of two texts, %LEN of a text, and
// %MATCH, which is 0. Each value is a plain absolute number.
#include <cstring>
#include <string_view>

#include "core/diagnostics.h"
#include "core/keyword_tables.h"
#include "core/statement.h"
#include "symbols/expression.h"
#include "symbols/symbols.h"
#include "textlang/percent.h"

namespace ta51 {

namespace {

// The facts of the expression around a %EVAL, which the inner evaluation
// would otherwise start afresh.
class OuterExpressionFacts {
 public:
  explicit OuterExpressionFacts(Assembler& as)
      : as_(as),
        relocatable_(as.ExprRelocatable),
        relocCount_(as.ExprRelocCount),
        type_(as.ExprType),
        segment_(as.ExprSegment),
        termCount_(as.ExprTermCount),
        segmentOffset_(as.ExprSegmentOffset),
        operated_(as.ExprOperated),
        additiveOnly_(as.ExprAdditiveOnly),
        segmentWanted_(as.SegmentOperandWanted),
        simpleReloc_(as.SimpleRelocOnly) {}
  ~OuterExpressionFacts() {
    as_.ExprRelocatable = relocatable_;
    as_.ExprRelocCount = relocCount_;
    as_.ExprType = type_;
    as_.ExprSegment = segment_;
    as_.ExprTermCount = termCount_;
    as_.ExprSegmentOffset = segmentOffset_;
    as_.ExprOperated = operated_;
    as_.ExprAdditiveOnly = additiveOnly_;
    as_.SegmentOperandWanted = segmentWanted_;
    as_.SimpleRelocOnly = simpleReloc_;
  }
  OuterExpressionFacts(const OuterExpressionFacts&) = delete;
  OuterExpressionFacts& operator=(const OuterExpressionFacts&) = delete;

 private:
  Assembler& as_;
  bool relocatable_;
  int32_t relocCount_;
  int32_t type_;
  SegmentEntry* segment_;
  int32_t termCount_;
  int32_t segmentOffset_;
  bool operated_, additiveOnly_, segmentWanted_, simpleReloc_;
};

// Blanks may stand between the name and its `(`.
bool OpenOperands(Assembler& as) {
  SkipBlanks(as);
  if (as.Line.Peek() != '(') {
    ReportError(as, 58);
    return false;
  }
  ++as.Line.offset;
  return true;
}

// The text from the read offset up to `stop` on the same line, blanks
// included; the read offset goes behind `stop`. Its absence is `missing`.
bool TextUpTo(Assembler& as, char stop, int missing, std::string_view& text) {
  LineCursor& line = as.Line;
  int32_t at = line.offset;
  for (char c = line.At(at); c != stop; c = line.At(++at)) {
    if (c == '\n' || c == '\0') {
      line.offset = at;
      ReportError(as, missing);
      return false;
    }
  }
  text = std::string_view(line.text).substr(static_cast<size_t>(line.offset), static_cast<size_t>(at - line.offset));
  line.offset = at + 1;
  return true;
}

int32_t Eval(Assembler& as) {
  int32_t value;
  {
    OuterExpressionFacts outer(as);
    ExprValue inner;
    value = EvaluateExpression(as, inner, nullptr);
  }
  if (as.LineHasError) return 0;
  if (as.Line.Peek() != ')') return ReportError(as, 5);
  ++as.Line.offset;
  return value;
}

int32_t Compare(Assembler& as, int code) {
  std::string_view first, second;
  if (!TextUpTo(as, ',', 20, first) || !TextUpTo(as, ')', 5, second)) return 0;
  int order = PercentCompare(first, second);
  switch (code) {
    case kPercentEqs: return order == 0;
    case kPercentNes: return order != 0;
    case kPercentLts: return order < 0;
    case kPercentLes: return order <= 0;
    case kPercentGts: return order > 0;
    default: return order >= 0;
  }
}

int32_t Length(Assembler& as) {
  std::string_view text;
  if (!TextUpTo(as, ')', 5, text)) return 0;
  return static_cast<int32_t>(text.size());
}

}  // namespace

int PercentCompare(std::string_view first, std::string_view second) {
  size_t common = first.size() < second.size() ? first.size() : second.size();
  int order = common == 0 ? 0 : std::memcmp(first.data(), second.data(), common);  // bytes unsigned
  if (order != 0) return order;
  return first.size() < second.size() ? -1 : first.size() > second.size() ? 1 : 0;
}

int ReadPercentFunctionName(Assembler& as) {
  const LineCursor& line = as.Line;
  int32_t at = line.offset;
  while (IsBlank(line.At(at))) ++at;
  if (line.At(at) != '%') return 0;
  int32_t end = at + 1;
  while (IsNameChar(line.At(end))) ++end;
  if (end == at + 1) return 0;
  std::string_view word = std::string_view(line.text).substr(static_cast<size_t>(at), static_cast<size_t>(end - at));
  // Function names keep their case: `%eval` is no function.
  const KeywordRow* row = FindKeyword(kPercentFunctions, word);
  if (row == nullptr) return 0;
  as.Line.offset = end;
  return row->code;
}

int32_t PercentFunction(Assembler& as, int code) {
  if (code == kPercentMatch) return 0;  // no operands are read
  if (!OpenOperands(as)) return 0;
  switch (code) {
    case kPercentEval: return Eval(as);
    case kPercentLen: return Length(as);
    default: return Compare(as, code);
  }
}

}  // namespace ta51
