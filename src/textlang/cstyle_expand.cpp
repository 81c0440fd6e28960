// Expansion of C-style macros in a line. A line in which no defined name
// stands is only scanned, in place: each word costs one hash and, for most
// words, one bit of the name filter. The first replacement starts the
// rewrite, which keeps the text still to scan in reverse, so that a
// replacement goes in front of it in time proportional to its own length and
// is scanned again in its turn.
//
// A call reads its arguments as text: each runs to the next `,` or `)`,
// parentheses are not counted, and the arguments are put into the body one
// after the other, each in turn searched by the later parameters.
//
// Recursion: a macro is not replaced inside its own replacement (the text
// that came from its body is "painted" with it), so `#define A A` leaves A
// alone and a cycle of macros stops when it comes back to its first name.
// Text that came from an argument is the caller's and is not painted, so
// `F(F(1))` calls F twice. What escapes the paint that way is bounded by the
// length of the line and by the characters one line may receive.
#include <array>
#include <string>
#include <string_view>

#include "core/diagnostics.h"
#include "textlang/cstyle.h"
#include "textlang/cstyle_words.h"

namespace ta51 {

namespace {

// An expanded line holds no more than the longest source line.
constexpr size_t kExpandedLineLimit = 65536;
// Characters that replacements may put into one line, all rescans counted,
// and into all lines of a pass: a source full of lines at the first bound
// must still end in seconds.
constexpr size_t kReplacementBudget = size_t{1} << 22;
constexpr uint64_t kPassBudget = uint64_t{1} << 28;

constexpr std::string_view kLineTooLong = "#define macros make the line longer than 65536 characters";
constexpr std::string_view kBudgetSpent = "#define macros put more than 4194304 characters into one line";
constexpr std::string_view kPassBudgetSpent =
    "#define macros put more than 268435456 characters into the lines of one pass";

enum : uint8_t { kOther = 0, kWordChar = 1, kWordStart = 3 };

// A word starts with a letter, `.` or `_`, and goes on with letters, digits,
// `.`, `$`, `@`, `_` and `~`.
constexpr std::array<uint8_t, 256> MakeCharClasses() {
  std::array<uint8_t, 256> classes{};
  for (int c = 'A'; c <= 'Z'; ++c) classes[c] = classes[c + 32] = kWordStart;
  classes['.'] = classes['_'] = kWordStart;
  for (int c = '0'; c <= '9'; ++c) classes[c] = kWordChar;
  classes['$'] = classes['@'] = classes['~'] = kWordChar;
  return classes;
}
constexpr std::array<uint8_t, 256> kCharClasses = MakeCharClasses();

bool IsWordStart(char c) { return kCharClasses[static_cast<unsigned char>(c)] == kWordStart; }
bool IsWordChar(char c) { return kCharClasses[static_cast<unsigned char>(c)] != kOther; }
bool IsLineSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

const CMacro* Lookup(const CStyleProcessor& c, std::string_view word, uint32_t hash) {
  if (!c.MayBeDefined(hash)) return nullptr;
  auto found = c.Macros.find(word);
  return found == c.Macros.end() ? nullptr : &found->second;
}

// Whether the quote `c` protects the text up to its partner: `"` always, `'`
// only in #if, where it makes a C character constant. ta51's own strings and
// character constants double a quote inside (`'''` is a quote), which no
// pairing of quotes can follow, so a name in single quotes is replaced.
bool IsQuote(char c, bool conditionView) { return c == '"' || (c == '\'' && conditionView); }

// Behind a quote at `at`: up to the same quote, or to the line end.
// Backslash escapes count in #if character constants only.
size_t SkipQuoted(std::string_view text, size_t at, bool escapes) {
  char quote = text[at++];
  while (at < text.size() && text[at] != quote && text[at] != '\n') {
    if (escapes && text[at] == '\\' && at + 1 < text.size() && text[at + 1] != '\n') ++at;
    ++at;
  }
  return at < text.size() && text[at] == quote ? at + 1 : at;
}

bool ParenFollows(std::string_view text, size_t at) {
  while (at < text.size() && IsLineSpace(text[at])) ++at;
  return at < text.size() && text[at] == '(';
}

// Behind `defined`: its operand, a name perhaps in parentheses, which is
// never expanded.
size_t SkipDefinedOperand(std::string_view text, size_t at) {
  while (at < text.size() && IsLineSpace(text[at])) ++at;
  if (at < text.size() && text[at] == '(') ++at;
  while (at < text.size() && IsLineSpace(text[at])) ++at;
  while (at < text.size() && IsWordChar(text[at])) ++at;
  return at;
}

// Where the first replacement of `text` begins, or npos. The same rules as
// the rewrite below, without touching the text.
size_t FirstReplacement(const CStyleProcessor& c, std::string_view text, bool conditionView) {
  size_t at = 0;
  const size_t size = text.size();
  while (at < size) {
    char ch = text[at];
    if (IsQuote(ch, conditionView)) {
      at = SkipQuoted(text, at, conditionView);
      continue;
    }
    if (ch == '/' && at + 1 < size && text[at + 1] == '/') return std::string_view::npos;
    if (!IsWordStart(ch)) {
      ++at;
      continue;
    }
    size_t start = at;
    uint32_t hash = kNameHashSeed;
    while (at < size && IsWordChar(text[at])) hash = NameHashStep(hash, text[at++]);
    std::string_view word = text.substr(start, at - start);
    if (conditionView && word == kCDefinedOperator) {
      at = SkipDefinedOperand(text, at);
      continue;
    }
    const CMacro* macro = Lookup(c, word, hash);
    if (macro != nullptr && (macro->Parameters.empty() || ParenFollows(text, at))) return start;
  }
  return std::string_view::npos;
}

void TrimSpaces(std::string& text) {
  while (!text.empty() && IsLineSpace(text.back())) text.pop_back();
}

class Expander {
 public:
  Expander(Assembler& as, bool conditionView)
      : as_(as), c_(as.CStyle), work_(as.CStyle.Work), conditionView_(conditionView) {}

  // Expands `text` from `from` on (what stands before is copied) into
  // work_.Out. False after a report. The paint is taken off again on every
  // way out.
  bool Run(std::string_view text, size_t from) {
    work_.Out.assign(text.substr(0, from));
    work_.Pending.assign(text.rbegin(), text.rend() - static_cast<std::ptrdiff_t>(from));
    bool done = Scan();
    while (!work_.Ranges.empty()) PopRange();
    return done;
  }

 private:
  bool Scan() {
    std::string& pending = work_.Pending;
    while (!pending.empty()) {
      Settle();
      char ch = pending.back();
      if (IsQuote(ch, conditionView_)) {
        CopyQuoted();
      } else if (ch == '/' && Ahead(1) == '/') {
        work_.Out.append(pending.rbegin(), pending.rend());
        pending.clear();
      } else if (!IsWordStart(ch)) {
        work_.Out += ch;
        pending.pop_back();
      } else if (!Word()) {
        return false;
      }
    }
    return true;
  }

  // The paint at the front of the pending text: pieces passed are taken
  // off, pieces reached are counted.
  void Settle() {
    std::vector<CPaintRange>& ranges = work_.Ranges;
    const size_t front = work_.Pending.size();
    while (!ranges.empty() && ranges.back().stop >= front) PopRange();
    for (size_t i = ranges.size(); i-- > 0;) {
      CPaintRange& range = ranges[i];
      if (range.active || range.begin < front) break;
      range.active = true;
      ++range.macro->Painted;
    }
  }

  void PopRange() {
    const CPaintRange& range = work_.Ranges.back();
    if (range.active) --range.macro->Painted;
    work_.Ranges.pop_back();
  }

  char Ahead(size_t k) const {
    const std::string& pending = work_.Pending;
    return k < pending.size() ? pending[pending.size() - 1 - k] : '\0';
  }
  char Take() {
    char ch = work_.Pending.back();
    work_.Pending.pop_back();
    return ch;
  }

  bool Fail(int number, std::string_view detail) {
    as_.Line.offset = 0;
    ReportError(as_, number, true, detail);
    return false;
  }

  void CopyQuoted() {
    const std::string& pending = work_.Pending;
    char quote = Take();
    work_.Out += quote;
    while (!pending.empty() && pending.back() != quote && pending.back() != '\n') {
      if (conditionView_ && pending.back() == '\\' && Ahead(1) != '\n' && pending.size() > 1) work_.Out += Take();
      work_.Out += Take();
    }
    if (!pending.empty() && pending.back() == quote) work_.Out += Take();
  }

  void CopyDefinedOperand() {
    const std::string& pending = work_.Pending;
    while (!pending.empty() && IsLineSpace(pending.back())) work_.Out += Take();
    if (!pending.empty() && pending.back() == '(') work_.Out += Take();
    while (!pending.empty() && IsLineSpace(pending.back())) work_.Out += Take();
    while (!pending.empty() && IsWordChar(pending.back())) work_.Out += Take();
  }

  bool ParenAhead() const {
    size_t k = 0;
    while (k < work_.Pending.size() && IsLineSpace(Ahead(k))) ++k;
    return Ahead(k) == '(';
  }

  // The word at the front of the pending text, replaced if it names a macro.
  bool Word() {
    std::string& out = work_.Out;
    size_t wordAt = out.size();
    uint32_t hash = kNameHashSeed;
    while (!work_.Pending.empty() && IsWordChar(work_.Pending.back())) {
      char ch = Take();
      out += ch;
      hash = NameHashStep(hash, ch);
    }
    std::string_view word(out.data() + wordAt, out.size() - wordAt);
    if (conditionView_ && word == kCDefinedOperator) {
      CopyDefinedOperand();
      return true;
    }
    const CMacro* macro = Lookup(c_, word, hash);
    if (macro == nullptr || macro->Painted > 0) return true;
    if (macro->Parameters.empty()) {
      out.resize(wordAt);
      return Push(macro->Body, nullptr, macro);
    }
    if (!ParenAhead()) return true;  // no call: the name stands for itself
    out.resize(wordAt);
    size_t count = 0;
    if (!ReadArguments(*macro, count) || !Substitute(*macro, count)) return false;
    return Push(work_.Body, &work_.BodyPaint, macro);
  }

  // The arguments of a call: each is the text up to the next `,` or `)`,
  // without the white space around it. A `)` ends the list, and so does the
  // `,` behind the last parameter's argument; what follows stays on the line.
  bool ReadArguments(const CMacro& macro, size_t& count) {
    std::string& pending = work_.Pending;
    while (pending.back() != '(') pending.pop_back();
    pending.pop_back();
    for (count = 0; count < macro.Parameters.size();) {
      if (count == work_.Arguments.size()) work_.Arguments.emplace_back();
      std::string& argument = work_.Arguments[count++];
      argument.clear();
      while (!pending.empty() && IsLineSpace(pending.back())) pending.pop_back();
      while (!pending.empty() && pending.back() != ',' && pending.back() != ')' && pending.back() != '\n')
        argument += Take();
      if (pending.empty() || pending.back() == '\n') return Fail(5, "arguments of " + macro.Name);
      TrimSpaces(argument);
      if (Take() == ')') break;
    }
    return true;
  }

  // Puts the arguments into a copy of the body, one parameter after the
  // other, and then removes each `##` with the white space around it.
  bool Substitute(const CMacro& macro, size_t count) {
    work_.Body = macro.Body;
    work_.BodyPaint.assign(macro.Body.size(), 1);
    for (size_t i = 0; i < count; ++i)
      if (!ReplaceParameter(macro.Parameters[i], work_.Arguments[i])) return false;
    RemovePastes();
    return true;
  }

  // Characters [from, to) of the body onto the copy being made.
  void CopyBody(size_t from, size_t to) {
    work_.Scratch.append(work_.Body, from, to - from);
    work_.ScratchPaint.append(work_.BodyPaint, from, to - from);
  }
  void SwapCopy() {
    work_.Body.swap(work_.Scratch);
    work_.BodyPaint.swap(work_.ScratchPaint);
  }

  // Each word of the body that equals `parameter` becomes `argument`; the
  // scan goes on behind the inserted text. Quoted text is skipped.
  bool ReplaceParameter(std::string_view parameter, std::string_view argument) {
    const std::string& body = work_.Body;
    work_.Scratch.clear();
    work_.ScratchPaint.clear();
    size_t at = 0;
    while (at < body.size()) {
      size_t start = at;
      if (IsQuote(body[at], conditionView_)) {
        at = SkipQuoted(body, at, conditionView_);
      } else if (!IsWordStart(body[at])) {
        ++at;
      } else {
        while (at < body.size() && IsWordChar(body[at])) ++at;
        if (std::string_view(body).substr(start, at - start) == parameter) {
          work_.Scratch.append(argument);
          work_.ScratchPaint.append(argument.size(), 0);
          if (work_.Scratch.size() > kExpandedLineLimit) return Fail(6, kLineTooLong);
          continue;
        }
      }
      CopyBody(start, at);
    }
    SwapCopy();
    return true;
  }

  void RemovePastes() {
    const std::string& body = work_.Body;
    if (body.find("##") == std::string::npos) return;
    work_.Scratch.clear();
    work_.ScratchPaint.clear();
    size_t at = 0;
    while (at < body.size()) {
      if (body[at] != '#' || at + 1 == body.size() || body[at + 1] != '#') {
        CopyBody(at, at + 1);
        ++at;
        continue;
      }
      while (!work_.Scratch.empty() && IsLineSpace(work_.Scratch.back())) {
        work_.Scratch.pop_back();
        work_.ScratchPaint.pop_back();
      }
      at += 2;
      while (at < body.size() && IsLineSpace(body[at])) ++at;
    }
    SwapCopy();
  }

  // Puts `text`, the replacement of `macro`, in front of the pending text,
  // painted with it where `paint` holds 1 (everywhere without `paint`).
  bool Push(std::string_view text, const std::string* paint, const CMacro* macro) {
    std::vector<CPaintRange>& ranges = work_.Ranges;
    const size_t front = work_.Pending.size();
    if (work_.Out.size() + front + text.size() > kExpandedLineLimit) return Fail(6, kLineTooLong);
    budget_ += text.size() + 1;
    c_.PassCharacters += text.size() + 1;
    if (budget_ > kReplacementBudget) return Fail(6, kBudgetSpent);
    if (c_.PassCharacters > kPassBudget) return Fail(6, kPassBudgetSpent);
    // A call that took text from behind a painted piece leaves that paint,
    // and a piece not reached yet that it took whole is gone. One whose
    // start it took begins behind the replacement; these lie on top, the
    // nearest first.
    while (!ranges.empty() && (ranges.back().stop > front || (!ranges.back().active && ranges.back().stop == front)))
      PopRange();
    for (size_t i = ranges.size(); i-- > 0 && !ranges[i].active && ranges[i].begin > front;) ranges[i].begin = front;
    // The pieces from the far end to the near one: the nearest on top.
    const size_t top = front + text.size();
    for (size_t end = text.size(); end > 0;) {
      if (paint != nullptr && (*paint)[end - 1] == 0) {
        --end;
        continue;
      }
      size_t start = end;
      while (start > 0 && (paint == nullptr || (*paint)[start - 1] != 0)) --start;
      ranges.push_back({macro, top - start, top - end, false});
      end = start;
    }
    work_.Pending.append(text.rbegin(), text.rend());
    return true;
  }

  Assembler& as_;
  CStyleProcessor& c_;
  CExpansionWork& work_;
  bool conditionView_;
  size_t budget_ = 0;
};

}  // namespace

const CMacro* FindCMacro(const Assembler& as, std::string_view name) {
  return Lookup(as.CStyle, name, NameHash(name));
}

bool ExpandCMacros(Assembler& as, std::string& text, bool conditionView) {
  CStyleProcessor& c = as.CStyle;
  if (c.Macros.empty()) return true;
  size_t first = FirstReplacement(c, text, conditionView);
  if (first == std::string_view::npos) return true;
  Expander expander(as, conditionView);
  if (!expander.Run(text, first)) return false;
  text.swap(c.Work.Out);
  return true;
}

}  // namespace ta51
