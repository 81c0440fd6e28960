// Register names and punctuation of the operand field. The readers here look
// at fixed spellings only; values are read in operand_values.cpp.
#include "isa/operands.h"

#include <cstdarg>
#include <cstdio>

#include "core/diagnostics.h"
#include "core/statement.h"
#include "symbols/symbols.h"

namespace ta51 {

namespace {

constexpr int kFirstRegisterCode = 2;  // R0
constexpr int kLastRegisterCode = 9;   // R7
constexpr int kAccumulatorCode = 1;

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// The zero past the end of the line ends every operand.
bool IsTerminator(char c, TerminatorSet terminators) { return terminators.Ends(c); }

bool MatchPatternCharacter(char pattern, char source, TerminatorSet terminators, PatternMatch& match) {
  if (pattern == '?') return IsTerminator(Upper(source), terminators);
  if (pattern != 'n') return Upper(source) == pattern;
  if (source < '0' || source > '7') return false;
  if (match.registerNumber < 0) match.registerNumber = source - '0';
  return true;
}

// `Rn` or an alias of R0..R7, followed by a terminator.
bool ReadRegisterName(Assembler& as, TerminatorSet terminators, int& number) {
  int code = MatchRegisterAlias(as, kFirstRegisterCode, kLastRegisterCode, terminators);
  if (code != 0) {
    number = RegisterNumber(code);
    return true;
  }
  return MatchToken(as, "Rn?", terminators, &number);
}

}  // namespace

PatternMatch MatchPattern(Assembler& as, std::string_view pattern, TerminatorSet terminators) {
  PatternMatch match;
  for (char p : pattern) {
    if (!MatchPatternCharacter(p, as.Line.Peek(), terminators, match)) return match;
    ++as.Line.offset;
    ++match.passed;
  }
  match.matched = true;
  return match;
}

bool MatchToken(Assembler& as, std::string_view pattern, TerminatorSet terminators, int* registerNumber) {
  PatternMatch match = MatchPattern(as, pattern, terminators);
  if (!match.matched) {
    as.Line.offset -= match.passed;
    return false;
  }
  if (!pattern.empty() && pattern.back() == '?') --as.Line.offset;  // the terminator stays unread
  if (registerNumber != nullptr) *registerNumber = match.registerNumber;
  return true;
}

int RegisterNumber(int registerCode) {
  return registerCode > kFirstRegisterCode && registerCode <= kLastRegisterCode ? registerCode - kFirstRegisterCode
                                                                                 : 0;
}

int MatchRegisterAlias(Assembler& as, int low, int high, TerminatorSet terminators) {
  int32_t start = as.Line.offset;
  int code = MatchRegisterSymbol(as, low, high);
  if (code == 0) return 0;
  if (!IsTerminator(as.Line.Peek(), terminators)) {
    as.Line.offset = start;  // an alias that runs on is no register here
    return 0;
  }
  return code;
}

bool MatchAccumulator(Assembler& as, TerminatorSet terminators) {
  return MatchToken(as, "A?", terminators) ||
         MatchRegisterAlias(as, kAccumulatorCode, kAccumulatorCode, terminators) != 0;
}

bool NextIs(Assembler& as, char c) {
  SkipBlanks(as);
  if (as.Line.Peek() != c) return false;
  ++as.Line.offset;
  return true;
}

bool IsAccumulator(Assembler& as) {
  SkipBlanks(as);
  return MatchAccumulator(as, LastOperandEnd);
}

bool IsAccumulatorComma(Assembler& as) {
  int32_t start = as.Line.offset;
  SkipBlanks(as);
  int32_t word = as.Line.offset;
  if (Upper(as.Line.Peek()) == 'A') {
    ++as.Line.offset;
    if (NextIs(as, ',')) return true;
    as.Line.offset = word;
  }
  // An alias may begin with an A itself, so it gets its own try.
  if (MatchRegisterSymbol(as, kAccumulatorCode, kAccumulatorCode) != 0 && NextIs(as, ',')) return true;
  as.Line.offset = start;
  return false;
}

bool ReadRegister(Assembler& as, TerminatorSet terminators, int& number) {
  SkipBlanks(as);
  return ReadRegisterName(as, terminators, number);
}

int ReadIndirectRegister(Assembler& as, TerminatorSet terminators) {
  SkipBlanks(as);
  int number = 0;
  if (!ReadRegisterName(as, terminators, number)) return ReportError(as, 76);
  if (number > 1) return ReportError(as, 65);
  return number;
}

bool ExpectComma(Assembler& as) {
  if (NextIs(as, ',')) return true;
  ReportError(as, 20);
  return false;
}

char NextNonBlank(Assembler& as) {
  SkipBlanks(as);
  char c = as.Line.Peek();
  ++as.Line.offset;
  return c;
}

std::string FormatText(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  va_list copy;
  va_copy(copy, arguments);
  int length = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace ta51
