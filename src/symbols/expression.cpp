#include "symbols/expression.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "core/diagnostics.h"
#include "symbols/symbols.h"
#include "symbols/tokens.h"
#include "textlang/percent.h"

namespace ta51 {

namespace {

constexpr std::string_view kUnexpectedRelocatable = "Unexpected relocatable expression";

// A plain character as a token. Bytes of 0x80 and above come out negative,
// so that no stray byte in the source is ever taken for an operator code.
int CharToken(char c) { return static_cast<int>(static_cast<signed char>(c)); }

bool IsChar(int token) { return token >= 0 && token < 0x80; }
bool IsDecimalToken(int token) { return token >= '0' && token <= '9'; }

// Value of a digit character in any radix up to 16, or 99.
int DigitValue(int token) {
  if (token >= '0' && token <= '9') return token - '0';
  if (token >= 'A' && token <= 'F') return token - 'A' + 10;
  if (token >= 'a' && token <= 'f') return token - 'a' + 10;
  return 99;
}

bool IsRelation(int token) { return BinaryLevel(token) == 4; }

bool IsKnownType(const Assembler& as, int type) {
  switch (type) {
    case T_EQU: case T_SET: case T_BIT: case T_REGEQU: case T_REGSET: case T_DECLARED:
    case T_DATA: case T_CODE: case T_RSEGMENT: case T_NUMBER: case T_XDATA: case T_IDATA: return true;
    case T_MACROVALUE: return as.InMacroExpansion;
    default: return false;
  }
}

// Counts the nesting of primaries; undone on every way out, exceptions too.
struct NestingGuard {
  explicit NestingGuard(int32_t& counter) : depth(++counter) {}
  ~NestingGuard() { --depth; }
  int32_t& depth;
};

// One evaluation: the recursive descent over the seven levels.
class Evaluator {
 public:
  Evaluator(Assembler& as, ExprValue& expr) : as_(as), expr_(expr) {}
  int32_t Expression() { return Binary(1); }

 private:
  void Append(std::string_view text) {
    if (!expr_.WantsText) return;  // nobody reads it: no text is built
    // Past the capacity the text stops growing; it is refused at the end if used.
    if (expr_.FullText.size() + text.size() >= kFullTextCapacity) {
      expr_.TextOverflow = true;
      return;
    }
    expr_.FullText.append(text);
  }

  void AppendOperator(int code) { Append(OperatorText(code)); }

  // An expression of the operators of `level` and above. Levels 1 to 4 are
  // read by precedence climbing over additive operands, so that a plain
  // operand does not pass through a call per level; level 5 has its own
  // loop, level 6 is the product and level 7 the primary.
  int32_t Binary(int level) {
    if (level == 5) return Additive();
    if (level == 7) return Primary();
    if (level == 6) return Product();
    int32_t left = Additive();
    // Most operands end without an operator of these levels.
    const int found = BinaryLevel(as_.ExprToken);
    if (as_.LineHasError || found < level || found > 4) return as_.LineHasError ? 0 : left;
    return Climb(left, level);
  }

  // Applies the operators of levels `level` to 4 that follow `left`, the
  // tighter ones first, each level from left to right.
  [[gnu::noinline]] int32_t Climb(int32_t left, int level) {
    while (!as_.LineHasError) {
      const int found = BinaryLevel(as_.ExprToken);
      if (found < level || found > 4) break;
      auto readRight = [this, found] {
        int32_t right = Additive();
        return !as_.LineHasError && found < 4 ? Climb(right, found + 1) : right;
      };
      if (!Combine(left, readRight)) return 0;
    }
    return as_.LineHasError ? 0 : left;
  }

  // Level 6: "*", "/", MOD, SHL and SHR over primaries.
  int32_t Product() {
    int32_t left = Primary();
    while (!as_.LineHasError && BinaryLevel(as_.ExprToken) == 6)
      if (!Combine(left, [this] { return Primary(); })) return 0;
    return as_.LineHasError ? 0 : left;
  }

  // The operator at the token between `left` and the operand that
  // `readRight` reads; false after an error.
  template <typename ReadRight>
  bool Combine(int32_t& left, ReadRight readRight) {
    int op = as_.ExprToken;
    as_.ExprAdditiveOnly = false;
    as_.ExprOperated = true;
    SegmentEntry* leftSegment = expr_.TermSegment;
    AppendOperator(op);
    bool leftAbsolute = expr_.LeftIsAbsolute;
    int32_t count = as_.ExprRelocCount;
    int32_t right = readRight();
    if (as_.LineHasError) return false;
    if (leftAbsolute && count == as_.ExprRelocCount) {
      if (!Apply(op, left, right, left)) return false;
    } else {
      left = right;  // the linker computes it from the text
    }
    expr_.LoneCandidate = false;
    CheckSimpleReloc(op, leftSegment);
    return true;
  }

  int32_t Additive() {
    int32_t left = Operand();
    bool leftLone = expr_.LoneCandidate;
    bool firstOperator = true;
    while (!as_.LineHasError && BinaryLevel(as_.ExprToken) == 5) {
      int op = as_.ExprToken;
      as_.ExprOperated = true;
      SegmentEntry* leftSegment = expr_.TermSegment;
      AppendOperator(op);
      bool leftAbsolute = expr_.LeftIsAbsolute;
      int32_t count = as_.ExprRelocCount;
      int32_t right = Operand();
      bool rightLone = expr_.LoneCandidate;
      if (as_.LineHasError) return 0;
      bool relocatableSide = !(leftAbsolute && count == as_.ExprRelocCount);
      if (relocatableSide)
        left = right;
      else
        Apply(op, left, right, left);
      // Only the first pair of a chain may cancel; the difference is a number.
      if (firstOperator && op == TOK_MINUS && leftLone && rightLone && Cancel(left)) relocatableSide = false;
      if (relocatableSide && as_.ExprAdditiveOnly) as_.ExprOperated = false;
      expr_.LoneCandidate = false;
      firstOperator = false;
      CheckSimpleReloc(op, leftSegment);
    }
    return as_.LineHasError ? 0 : left;
  }

  // An operand of "+" and "-": a level 6 expression, recorded if it is lone.
  int32_t Operand() {
    int32_t value = Binary(6);
    if (expr_.LoneCandidate && !expr_.LonePushed) PushLone();
    return value;
  }

  void PushLone() {
    expr_.LoneHistory[0] = expr_.LoneHistory[1];
    expr_.LoneHistory[1] = expr_.LoneTerm;
    if (expr_.LoneCount < 2) ++expr_.LoneCount;
    expr_.LonePushed = true;
    as_.ExprSegmentOffset = expr_.LoneTerm.offset;
    if (expr_.LoneTerm.primary == 1) --as_.ExprTermCount;
  }

  // Two lone terms of one segment subtract to an absolute number.
  bool Cancel(int32_t& value) {
    const LoneRecord& left = expr_.LoneHistory[0];
    const LoneRecord& right = expr_.LoneHistory[1];
    if (expr_.LoneCount < 2 || left.segment == nullptr || left.segment != right.segment) return false;
    value = static_cast<int32_t>(static_cast<uint32_t>(left.offset) - static_cast<uint32_t>(right.offset));
    as_.ExprRelocCount -= 2;
    as_.ExprSegment = left.segmentBefore;
    as_.ExprRelocatable = left.relocatableBefore;
    as_.ExprType = left.typeAfter;
    expr_.LeftIsAbsolute = true;
    return true;
  }

  // Both operands absolute. Wraps modulo 2^32; false after "Divide by zero".
  bool Apply(int op, int32_t left, int32_t right, int32_t& result) {
    if (ApplyBinaryOperator(op, left, right, result)) return true;
    ReportError(as_, 64);
    return false;
  }

  void CheckSimpleReloc(int op, SegmentEntry* leftSegment) {
    if (!as_.SimpleRelocOnly) return;
    SegmentEntry* rightSegment = expr_.TermSegment;
    if (op == TOK_PLUS) {
      if (leftSegment != nullptr && rightSegment != nullptr) ReportError(as_, 94);
    } else if (op == TOK_MINUS || IsRelation(op)) {
      if (leftSegment == nullptr || rightSegment == nullptr) return;
      if (leftSegment != rightSegment)
        ReportError(as_, 94);
      else
        expr_.TermSegment = nullptr;  // a difference within a segment has none
    } else if (leftSegment != nullptr || rightSegment != nullptr) {
      ReportError(as_, 94);
    }
  }

  int32_t Primary() {
    NestingGuard guard(as_.ExprDepth);  // a bounded stack for "((((..." and "- - -..."
    if (as_.ExprDepth > kMaxExprNesting) return ReportError(as_, 6);
    ++expr_.PrimaryCount;
    ++as_.ExprTermCount;
    expr_.TermSegment = nullptr;
    expr_.LoneCandidate = false;
    // The functions of the percent dialect come ahead of `%` as the binary
    // prefix; no binary number has a letter behind its `%`.
    if (as_.PercentDialect) {
      int code = PercentFunctionCode(as_);
      if (code != 0) return PercentFunctionTerm(code);
    }
    int token = ScanToken(as_, true);
    if (token == TOK_PLUS) {
      // A sign opens the primary with the very next character, unscanned.
      Append("+");
      token = CharToken(as_.Line.Peek());
      ++as_.Line.offset;
    }
    return Dispatch(token);
  }

  int32_t PercentFunctionTerm(int code) {
    int32_t value = PercentFunction(as_, code);
    if (as_.LineHasError) return 0;
    ScanToken(as_, true);
    return AbsoluteTerm(value);
  }

  int32_t Dispatch(int token) {
    switch (token) {
      case TOK_HIGH: case TOK_LOW: case TOK_NOT: case TOK_MINUS: return Prefix(token);
      case TOK_BASE: case TOK_SIZE: return SegmentOperator(token);
      case '%': return PrefixedNumber(2);
      case '@': return PrefixedNumber(8);
      case '&': return PrefixedNumber(10);
      case '$': return ProgramCounter();
      case '\'': return CharConstant();
      case '(': return Parenthesis();
      default: break;
    }
    if (IsDecimalToken(token)) return Number(token);
    if (IsChar(token) && IsNameStart(static_cast<char>(token))) return Symbol();
    return ReportError(as_, 11);
  }

  // HIGH, LOW and NOT take everything to their right; unary minus takes a
  // product, so -A * B is -(A * B) while -A + B is (-A) + B.
  int32_t Prefix(int op) {
    AppendOperator(op);
    if (op != TOK_MINUS) as_.ExprAdditiveOnly = false;
    as_.ExprOperated = true;
    int32_t count = as_.ExprRelocCount;
    int32_t value = Binary(op == TOK_MINUS ? 6 : 1);
    if (as_.LineHasError) return 0;
    expr_.LoneCandidate = false;
    if (count != as_.ExprRelocCount) return value;  // the linker applies it
    return ApplyPrefixOperator(op, value);
  }

  int32_t SegmentOperator(int op) {
    AppendOperator(op);
    as_.ExprType = T_NUMBER;
    bool wanted = as_.SegmentOperandWanted;
    as_.SegmentOperandWanted = true;
    int32_t value = Binary(1);
    as_.SegmentOperandWanted = wanted;
    expr_.LoneCandidate = false;
    return as_.LineHasError ? 0 : value;
  }

  // Parentheses keep a lone term lone and leave the operator facts alone.
  int32_t Parenthesis() {
    Append("(");
    int32_t count = as_.ExprRelocCount;
    int32_t value = Binary(1);
    if (as_.LineHasError) return 0;
    if (as_.ExprToken != ')') return ReportError(as_, 5);
    Append(")");
    ScanToken(as_, true);
    if (as_.ExprRelocCount > count) expr_.LeftIsAbsolute = false;
    return value;
  }

  // Digits go through ScanToken, so an operator word may end a number ("1OR 2").
  // Takes digits of `radix` into `run`; returns the token that stopped it.
  int ReadRun(std::string& run, int radix) {
    for (;;) {
      // No operator starts with a decimal digit, so a digit needs no scan.
      char next = as_.Line.Peek();
      int token;
      if (next >= '0' && next <= '9') {
        ++as_.Line.offset;
        token = as_.ExprToken = next;
      } else {
        token = ScanToken(as_, false);
      }
      if (DigitValue(token) >= radix) return token;
      run.push_back(static_cast<char>(token));
      if (run.size() > 32) {
        ReportError(as_, 6);
        return token;
      }
    }
  }

  int32_t Number(int first) {
    std::string run(1, static_cast<char>(first));
    char next = as_.Line.Peek();
    if (first == '0' && (next == 'x' || next == 'X')) {
      ++as_.Line.offset;
      return PrefixedNumber(16);
    }
    int stop = ReadRun(run, 16);
    if (as_.LineHasError) return 0;
    int radix = 10;
    if (stop == 'H' || stop == 'h') {
      radix = 16;
      stop = ScanToken(as_, true);
    } else if (stop == 'O' || stop == 'o' || stop == 'Q' || stop == 'q') {
      radix = 8;
      stop = ScanToken(as_, true);
    } else if (run.back() == 'D' || run.back() == 'd') {
      run.pop_back();
    } else if (run.back() == 'B' || run.back() == 'b') {
      radix = 2;
      run.pop_back();
    }
    return FinishNumber(run, radix, stop);
  }

  int32_t PrefixedNumber(int radix) {
    std::string run;
    int stop = ReadRun(run, radix);
    return FinishNumber(run, radix, stop);
  }

  // Converts the digits modulo 2^32 and makes the number an absolute term.
  int32_t FinishNumber(const std::string& run, int radix, int stop) {
    if (as_.LineHasError) return 0;
    uint32_t value = 0;
    for (char c : run) {
      int digit = DigitValue(static_cast<unsigned char>(c));
      if (digit >= radix) return ReportError(as_, 7);
      value = value * static_cast<uint32_t>(radix) + static_cast<uint32_t>(digit);
    }
    if (stop == ' ' || stop == '\t') ScanToken(as_, true);  // blanks before the next token
    return AbsoluteTerm(static_cast<int32_t>(value));
  }

  int32_t CharConstant() {
    LineCursor& line = as_.Line;
    auto first = static_cast<unsigned char>(line.Peek());
    ++line.offset;
    if (first >= 0x80) return ReportError(as_, 3);
    uint32_t value = first;  // taken as it stands, even a quote
    int count = 1;
    for (;;) {
      char c = line.Peek();
      // The line ended before the closing quote.
      if (c == '\n' || c == '\0') return ReportError(as_, 11);
      ++line.offset;
      if (c == '\'') {
        if (line.Peek() != '\'') break;
        ++line.offset;  // two quotes stand for one
      }
      if (++count > 4) return ReportError(as_, 87);
      value = (value << 8) | static_cast<unsigned char>(c);
    }
    ScanToken(as_, true);
    return AbsoluteTerm(static_cast<int32_t>(value));
  }

  int32_t ProgramCounter() {
    SegmentEntry* segment = as_.CurrentSegment;
    if (segment == nullptr) return ReportError(as_, 93);
    LoneRecord term{.segmentBefore = as_.ExprSegment, .relocatableBefore = as_.ExprRelocatable};
    expr_.TermSegment = segment;
    NoteSymbolFacts(segment, segment->type);
    ScanToken(as_, true);
    auto offset = static_cast<int32_t>(segment->location);
    if (segment->IsAbsolute()) return AbsoluteTerm(offset);
    if (!expr_.WantsText) throw CExpressionException{std::string(kUnexpectedRelocatable)};
    MarkLone(term, offset, segment);
    RelocatableTerm();
    AppendSegmentText(segment, offset);
    return 0;
  }

  int32_t Symbol() {
    LineCursor& line = as_.Line;
    int32_t start = line.offset - 1;  // ScanToken took the first character
    int type = LookupSymbol(as_, line.Pointer(start));
    if (as_.LineHasError) return 0;
    line.offset = start + static_cast<int32_t>(as_.NameBuffer.size());
    if (!IsKnownType(as_, type) || as_.FoundSymbol == nullptr) return UnknownSymbol();

    SymbolEntry& symbol = *as_.FoundSymbol;
    LoneRecord term{.segmentBefore = as_.ExprSegment, .relocatableBefore = as_.ExprRelocatable};
    if (type == T_DECLARED) as_.ExprUndefined = true;
    // A SET may give the name another value before the second pass gets here.
    if (symbol.flags & kSymSettable) as_.Reuse.Decline();
    symbol.flags |= kSymUsedExternal;
    expr_.TermSegment = symbol.segment;
    NoteSymbolFacts(symbol.segment, symbol.type);
    if (!IsRelocatable(symbol)) {
      int32_t value = AbsoluteSymbol(symbol);
      if (!as_.LineHasError) ScanToken(as_, true);
      return value;
    }
    if (!expr_.WantsText) throw CExpressionException{std::string(kUnexpectedRelocatable)};
    // A segment name keeps its segment's type in the text, before the term
    // is recorded.
    if (symbol.relocation != REL_XREF && symbol.type == T_RSEGMENT) as_.ExprType = symbol.relocation;
    // Externals and segment names never cancel against anything; stored text
    // has no segment of its own to cancel in.
    if (symbol.relocation != REL_XREF && symbol.type != T_RSEGMENT)
      if (!symbol.Expression().empty() || symbol.segment != nullptr)
        MarkLone(term, symbol.value, symbol.Expression().empty() ? symbol.segment : nullptr);
    RelocatableTerm();
    AppendRelocatableText(symbol);
    ScanToken(as_, true);
    return 0;
  }

  int32_t UnknownSymbol() {
    if (!expr_.TolerateUnknown) {
      if (as_.SecondPass) return ReportError(as_, 33);
      as_.ExprUndefined = true;
    }
    ScanToken(as_, true);
    return AbsoluteTerm(expr_.TolerateUnknown ? 0 : kUndefinedValue);
  }

  bool IsRelocatable(const SymbolEntry& symbol) const {
    if (!symbol.Expression().empty()) return true;
    if (symbol.segment != nullptr && symbol.segment->IsAbsolute()) return false;
    if (!expr_.WantsText) return false;
    if (symbol.relocation == REL_XREF || symbol.type == T_RSEGMENT) return true;
    return symbol.segment != nullptr;
  }

  int32_t AbsoluteSymbol(const SymbolEntry& symbol) {
    if (symbol.relocation == REL_XREF) return ReportError(as_, 74);
    if (symbol.type == T_RSEGMENT) return ReportError(as_, 96);
    return AbsoluteTerm(as_.ExprUndefined ? kUndefinedValue : symbol.value);
  }

  // The linker's text of a relocatable symbol, appended piece by piece.
  [[gnu::noinline]] void AppendRelocatableText(const SymbolEntry& symbol) {
    if (symbol.relocation == REL_XREF) {
      Append("X");
      AppendHex(static_cast<uint32_t>(symbol.value));
    } else if (symbol.type == T_RSEGMENT) {
      Append("L");
      AppendHex(static_cast<uint32_t>(symbol.value));
    } else if (!symbol.Expression().empty()) {
      Append("(");
      Append(symbol.Expression());
      Append(")");
    } else {
      AppendSegmentText(symbol.segment, symbol.value);
    }
  }

  // A place in a relocatable segment: its number and the offset, if any.
  [[gnu::noinline]] void AppendSegmentText(const SegmentEntry* segment, int32_t offset) {
    const uint32_t number = segment != nullptr ? static_cast<uint32_t>(segment->number) : 0;
    if (offset == 0) {
      Append("R");
      AppendHex(number);
      return;
    }
    Append("(R");
    AppendHex(number);
    Append("+");
    AppendHex(static_cast<uint32_t>(offset));
    Append(")");
  }

  void AppendHex(uint32_t value) {
    char digits[8];
    Append(HexDigits(value, digits));
  }

  // The primary just read may stand alone as an operand of "+" or "-".
  void MarkLone(LoneRecord term, int32_t offset, SegmentEntry* segment) {
    term.offset = offset;
    term.typeAfter = as_.ExprType;
    term.segment = segment;
    term.primary = expr_.PrimaryCount;
    expr_.LoneTerm = term;
    expr_.LoneCandidate = true;
    expr_.LonePushed = false;
  }

  void NoteSymbolFacts(SegmentEntry* segment, int32_t type) {
    if (as_.ExprSegment == nullptr) as_.ExprSegment = segment;
    if (as_.ExprType == T_NUMBER) as_.ExprType = type;
    if (as_.SegmentOperandWanted && as_.ExprType != T_RSEGMENT) ReportError(as_, 90);
  }

  // Counts a relocatable term; its text follows.
  void RelocatableTerm() {
    ++as_.ExprRelocCount;
    as_.ExprRelocatable = true;
    expr_.LeftIsAbsolute = false;
  }

  int32_t AbsoluteTerm(int32_t value) {
    expr_.LeftIsAbsolute = true;
    if (expr_.WantsText) AppendHex(static_cast<uint32_t>(value));
    return value;
  }

  Assembler& as_;
  ExprValue& expr_;
};

void StartEvaluation(Assembler& as, ExprValue& expr, bool wantsText, bool simpleRelocOnly) {
  bool tolerate = expr.TolerateUnknown;  // the caller's choice survives
  expr.Reset();
  expr.TolerateUnknown = tolerate;
  expr.WantsText = wantsText;
  as.ExprRelocatable = false;
  as.ExprRelocCount = 0;
  as.ExprType = T_NUMBER;
  as.ExprSegment = nullptr;
  as.ExprTermCount = 0;
  as.ExprOperated = false;
  as.ExprAdditiveOnly = true;
  as.SegmentOperandWanted = false;
  as.SimpleRelocOnly = simpleRelocOnly;
}

int32_t Evaluate(Assembler& as, ExprValue& expr, std::string* textBuffer, bool simpleRelocOnly) {
  bool hadText = textBuffer != nullptr && !textBuffer->empty();
  StartEvaluation(as, expr, textBuffer != nullptr, simpleRelocOnly);
  int32_t value = Evaluator(as, expr).Expression();
  if (textBuffer != nullptr && (as.ExprRelocCount > 0 || hadText)) {
    if (expr.TextOverflow) {
      if (!as.LineHasError) ReportError(as, 6);
      value = 0;
    } else {
      *textBuffer = expr.FullText;
    }
  }
  if (as.ExprOperated) as.ExprType = T_NUMBER;
  --as.Line.offset;  // back onto the token that ended the expression
  return value;
}

}  // namespace

int32_t EvaluateExpression(Assembler& as, ExprValue& expr, std::string* textBuffer, bool simpleRelocOnly) {
  try {
    return Evaluate(as, expr, textBuffer, simpleRelocOnly);
  } catch (const CExpressionException& exception) {
    ReportError(as, 1, true, exception.text);
  } catch (const RunTerminated&) {
    throw;  // the end of the run, not a fault of the expression
  } catch (...) {
    std::fprintf(as.console.out, "Unexpected exception in expression handler: %s\n", as.Line.text.c_str());
  }
  return 0;
}

int32_t EvaluateAbsolute(Assembler& as, bool simpleRelocOnly) {
  ExprValue expr;
  return EvaluateExpression(as, expr, nullptr, simpleRelocOnly);
}

}  // namespace ta51
