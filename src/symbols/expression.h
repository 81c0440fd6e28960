// Operand expressions: the value, the text for the linker and the facts
// (type, segment, lone term) that the encoder and the directives read.
#pragma once

#include <cstdint>
#include <string>

#include "core/assembler.h"
#include "symbols/expression_text.h"

namespace ta51 {

// Bytes of FullText, its terminating zero included.
constexpr size_t kFullTextCapacity = 2000;
static_assert(kFullTextCapacity <= kOperandSlotCapacity, "an expression text must fit an operand slot");
// Deepest nesting of parentheses and prefix operators; deeper is "Overflow".
constexpr int32_t kMaxExprNesting = 256;
// What a name not yet defined reads as in the first pass.
constexpr int32_t kUndefinedValue = 0xFFFFFE;

// One relocatable term that stood alone as an operand of "+" or "-".
struct LoneRecord {
  int32_t offset = 0;
  SegmentEntry* segmentBefore = nullptr;
  bool relocatableBefore = false;
  int32_t typeAfter = T_NUMBER;
  SegmentEntry* segment = nullptr;  // the term's own segment; none for stored text
  int32_t primary = 0;              // PrimaryCount of the term
};

// The working object of one evaluation.
struct ExprValue {
  std::string FullText;
  bool WantsText = false;
  bool LeftIsAbsolute = true;
  SegmentEntry* TermSegment = nullptr;
  int32_t PrimaryCount = 0;
  LoneRecord LoneHistory[2];
  int LoneCount = 0;
  bool TolerateUnknown = false;
  // The primary just read may be a lone term; parentheses pass this on.
  bool LoneCandidate = false;
  bool LonePushed = false;  // LoneTerm already stands in LoneHistory
  LoneRecord LoneTerm;
  bool TextOverflow = false;  // FullText stopped growing at its capacity

  // Back to a fresh evaluation, keeping the text's storage.
  void Reset() {
    FullText.clear();
    WantsText = false;
    LeftIsAbsolute = true;
    TermSegment = nullptr;
    PrimaryCount = 0;
    LoneHistory[0] = LoneHistory[1] = LoneTerm = LoneRecord{};
    LoneCount = 0;
    TolerateUnknown = false;
    LoneCandidate = false;
    LonePushed = false;
    TextOverflow = false;
  }
};

// Thrown inside the evaluator only; EvaluateExpression catches it.
struct CExpressionException {
  std::string text;
};

// Evaluates the expression at the read offset. With `textBuffer` the
// expression may hold relocatable terms, whose text lands there.
int32_t EvaluateExpression(Assembler& as, ExprValue& expr, std::string* textBuffer,
                           bool simpleRelocOnly = false);
// The same with no text buffer: a relocatable term is an error there.
int32_t EvaluateAbsolute(Assembler& as, bool simpleRelocOnly = false);
// Reads the next token at the read offset: the general case.
int ScanTokenAnyCharacter(Assembler& as, bool skipBlanks);

// Reads the next token at the read offset. Most tokens are one character
// that starts no operator and follows no blank: they take one table look.
inline int ScanToken(Assembler& as, bool skipBlanks) {
  LineCursor& line = as.Line;
  const char c = line.Peek();
  if (c == ' ' || c == '\t' || detail::kFirstCharacterRows[static_cast<unsigned char>(c)] != 0)
    return ScanTokenAnyCharacter(as, skipBlanks);
  ++line.offset;
  return as.ExprToken = static_cast<int>(static_cast<signed char>(c));
}

}  // namespace ta51
