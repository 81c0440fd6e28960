// Expansion of C-style macros in a line. A line in which no defined name
// stands is only scanned, in place: each word costs one hash and, for most
// words, one bit of the name filter. The first replacement starts the
// rewrite, which keeps the text still to scan in reverse, so that a
// replacement goes in front of it in time proportional to its own length and
// is scanned again in its turn.
//
// Recursion: as in C, a macro is not replaced inside its own replacement (the
// replacement is "painted" with it), so `#define A A` leaves A alone and a
// cycle of macros stops when it comes back to its first name. What escapes
// the paint by taking arguments from behind a replacement is bounded by the
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
// Macro calls in the arguments of macro calls, each expanded on its own.
constexpr size_t kArgumentNestingLimit = 64;

constexpr std::string_view kLineTooLong = "#define macros make the line longer than 65536 characters";
constexpr std::string_view kBudgetSpent = "#define macros put more than 4194304 characters into one line";
constexpr std::string_view kPassBudgetSpent =
    "#define macros put more than 268435456 characters into the lines of one pass";
constexpr std::string_view kNestedTooDeep = "#define macro calls nest more than 64 deep in arguments";

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

const CMacro* Lookup(const CStyleProcessor& c, std::string_view word, uint32_t hash, bool conditionView) {
  if (!c.MayBeDefined(hash)) return nullptr;
  auto found = c.Macros.find(word);
  if (found == c.Macros.end()) return nullptr;
  if (conditionView && found->second.Pass != c.Pass) return nullptr;
  return &found->second;
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
    const CMacro* macro = Lookup(c, word, hash, conditionView);
    if (macro != nullptr && (!macro->FunctionLike || ParenFollows(text, at))) return start;
  }
  return std::string_view::npos;
}

int ParameterIndex(const CMacro& macro, std::string_view word) {
  for (size_t i = 0; i < macro.Parameters.size(); ++i)
    if (macro.Parameters[i] == word) return static_cast<int>(i);
  return -1;
}

// Whether `##` stands next to the word [start, end) of a body.
bool Pasted(std::string_view body, size_t start, size_t end) {
  while (start > 0 && IsLineSpace(body[start - 1])) --start;
  if (start >= 2 && body[start - 1] == '#' && body[start - 2] == '#') return true;
  while (end < body.size() && IsLineSpace(body[end])) ++end;
  return end + 1 < body.size() && body[end] == '#' && body[end + 1] == '#';
}

void TrimSpaces(std::string& text) {
  while (!text.empty() && IsLineSpace(text.back())) text.pop_back();
}

class Expander {
 public:
  Expander(Assembler& as, bool conditionView) : as_(as), c_(as.CStyle), conditionView_(conditionView) {}

  CExpansionLevel& Level(size_t depth) {
    while (c_.Levels.size() <= depth) c_.Levels.emplace_back();
    return c_.Levels[depth];
  }

  // Expands `text` from `from` on (what stands before is copied) into
  // Level(depth).Out. False after a report. The paint of its ranges is
  // taken off again on every way out.
  bool Run(std::string_view text, size_t depth, size_t from) {
    CExpansionLevel& level = Level(depth);
    level.Out.assign(text.substr(0, from));
    level.Pending.assign(text.rbegin(), text.rend() - static_cast<std::ptrdiff_t>(from));
    bool done = Scan(level, depth);
    while (!level.Ranges.empty()) PopRange(level);
    return done;
  }

 private:
  bool Scan(CExpansionLevel& level, size_t depth) {
    while (!level.Pending.empty()) {
      while (!level.Ranges.empty() && level.Ranges.back().stop >= level.Pending.size()) PopRange(level);
      char ch = level.Pending.back();
      if (IsQuote(ch, conditionView_)) {
        CopyQuoted(level);
      } else if (ch == '/' && Ahead(level, 1) == '/') {
        level.Out.append(level.Pending.rbegin(), level.Pending.rend());
        level.Pending.clear();
      } else if (!IsWordStart(ch)) {
        level.Out += ch;
        level.Pending.pop_back();
      } else if (!Word(level, depth)) {
        return false;
      }
    }
    return true;
  }

  static void PopRange(CExpansionLevel& level) {
    --level.Ranges.back().macro->Painted;
    level.Ranges.pop_back();
  }

  static char Ahead(const CExpansionLevel& level, size_t k) {
    return k < level.Pending.size() ? level.Pending[level.Pending.size() - 1 - k] : '\0';
  }
  static char Take(CExpansionLevel& level) {
    char ch = level.Pending.back();
    level.Pending.pop_back();
    return ch;
  }

  bool Fail(int number, std::string_view detail) {
    as_.Line.offset = 0;
    ReportError(as_, number, true, detail);
    return false;
  }

  void CopyQuoted(CExpansionLevel& level) {
    char quote = Take(level);
    level.Out += quote;
    while (!level.Pending.empty() && level.Pending.back() != quote && level.Pending.back() != '\n') {
      if (conditionView_ && level.Pending.back() == '\\' && Ahead(level, 1) != '\n' && level.Pending.size() > 1)
        level.Out += Take(level);
      level.Out += Take(level);
    }
    if (!level.Pending.empty() && level.Pending.back() == quote) level.Out += Take(level);
  }

  void CopyDefinedOperand(CExpansionLevel& level) {
    while (!level.Pending.empty() && IsLineSpace(level.Pending.back())) level.Out += Take(level);
    if (!level.Pending.empty() && level.Pending.back() == '(') level.Out += Take(level);
    while (!level.Pending.empty() && IsLineSpace(level.Pending.back())) level.Out += Take(level);
    while (!level.Pending.empty() && IsWordChar(level.Pending.back())) level.Out += Take(level);
  }

  bool ParenAhead(const CExpansionLevel& level) const {
    size_t k = 0;
    while (k < level.Pending.size() && IsLineSpace(Ahead(level, k))) ++k;
    return Ahead(level, k) == '(';
  }

  // The word at the front of the pending text, replaced if it names a macro.
  bool Word(CExpansionLevel& level, size_t depth) {
    size_t wordAt = level.Out.size();
    uint32_t hash = kNameHashSeed;
    while (!level.Pending.empty() && IsWordChar(level.Pending.back())) {
      char ch = Take(level);
      level.Out += ch;
      hash = NameHashStep(hash, ch);
    }
    std::string_view word(level.Out.data() + wordAt, level.Out.size() - wordAt);
    if (conditionView_ && word == kCDefinedOperator) {
      CopyDefinedOperand(level);
      return true;
    }
    const CMacro* macro = Lookup(c_, word, hash, conditionView_);
    if (macro == nullptr || macro->Painted > 0) return true;
    if (!macro->FunctionLike) {
      level.Out.resize(wordAt);
      return Push(level, macro->Body, macro);
    }
    if (!ParenAhead(level)) return true;  // a name of its own, as in C
    level.Out.resize(wordAt);
    if (!ReadArguments(level, *macro) || !Substitute(level, *macro, depth)) return false;
    return Push(level, level.Body, macro);
  }

  // The arguments of a call, from its `(` to the matching `)`. Parentheses
  // nest, and text in double quotes is taken whole.
  bool ReadArguments(CExpansionLevel& level, const CMacro& macro) {
    while (level.Pending.back() != '(') level.Pending.pop_back();
    level.Pending.pop_back();
    size_t count = 0;
    auto next = [&]() -> std::string& {
      if (count == level.Arguments.size()) level.Arguments.emplace_back();
      level.Arguments[count].clear();
      return level.Arguments[count++];
    };
    std::string* argument = &next();
    int nesting = 0;
    while (true) {
      if (level.Pending.empty() || level.Pending.back() == '\n')
        return Fail(5, "arguments of " + macro.Name);
      char ch = Take(level);
      if (ch == ')' && nesting == 0) break;
      if (ch == ',' && nesting == 0) {
        argument = &next();
        continue;
      }
      if (ch == '(') ++nesting;
      if (ch == ')') --nesting;
      *argument += ch;
      if (IsQuote(ch, conditionView_)) {
        while (!level.Pending.empty() && level.Pending.back() != ch && level.Pending.back() != '\n')
          *argument += Take(level);
        if (!level.Pending.empty() && level.Pending.back() == ch) *argument += Take(level);
      }
    }
    for (size_t i = 0; i < count; ++i) {
      std::string& text = level.Arguments[i];
      TrimSpaces(text);
      size_t lead = 0;
      while (lead < text.size() && IsLineSpace(text[lead])) ++lead;
      text.erase(0, lead);
    }
    size_t wanted = macro.Parameters.size();
    if (wanted == 0 && count == 1 && level.Arguments[0].empty()) count = 0;
    if (count == wanted) return true;
    return Fail(11, macro.Name + " takes " + std::to_string(wanted) + " argument" + (wanted == 1 ? "" : "s") +
                        ", " + std::to_string(count) + " given");
  }

  // The argument of parameter `index`, its own macros expanded as if it
  // stood alone. The ranges around the call stay painted meanwhile.
  bool ExpandArgument(CExpansionLevel& level, size_t index, size_t depth) {
    if (depth + 1 >= kArgumentNestingLimit) return Fail(6, kNestedTooDeep);
    CExpansionLevel& inner = Level(depth + 1);
    if (!Run(level.Arguments[index], depth + 1, 0)) return false;
    level.ExpandedArguments[index] = inner.Out;
    level.Expanded[index] = true;
    return true;
  }

  // The body with its arguments put in: an argument next to `##` as written,
  // any other expanded first. `##` goes with the blanks around it.
  bool Substitute(CExpansionLevel& level, const CMacro& macro, size_t depth) {
    const std::string& body = macro.Body;
    level.Body.clear();
    level.Expanded.assign(macro.Parameters.size(), false);
    if (level.ExpandedArguments.size() < macro.Parameters.size()) level.ExpandedArguments.resize(macro.Parameters.size());
    size_t at = 0;
    while (at < body.size()) {
      char ch = body[at];
      if (IsQuote(ch, conditionView_)) {
        size_t end = SkipQuoted(body, at, conditionView_);
        level.Body.append(body, at, end - at);
        at = end;
        continue;
      }
      if (ch == '#' && at + 1 < body.size() && body[at + 1] == '#') {
        TrimSpaces(level.Body);
        at += 2;
        while (at < body.size() && IsLineSpace(body[at])) ++at;
        continue;
      }
      if (!IsWordStart(ch)) {
        level.Body += ch;
        ++at;
        continue;
      }
      size_t start = at;
      while (at < body.size() && IsWordChar(body[at])) ++at;
      std::string_view word(body.data() + start, at - start);
      int index = ParameterIndex(macro, word);
      if (index < 0) {
        level.Body.append(word);
      } else if (Pasted(body, start, at)) {
        level.Body.append(level.Arguments[index]);
      } else {
        if (!level.Expanded[index] && !ExpandArgument(level, static_cast<size_t>(index), depth)) return false;
        level.Body.append(level.ExpandedArguments[index]);
      }
      if (level.Body.size() > kExpandedLineLimit) return Fail(6, kLineTooLong);
    }
    return true;
  }

  // Puts `text`, the replacement of `macro`, in front of the pending text.
  bool Push(CExpansionLevel& level, std::string_view text, const CMacro* macro) {
    if (level.Out.size() + level.Pending.size() + text.size() > kExpandedLineLimit) return Fail(6, kLineTooLong);
    budget_ += text.size() + 1;
    c_.PassCharacters += text.size() + 1;
    if (budget_ > kReplacementBudget) return Fail(6, kBudgetSpent);
    if (c_.PassCharacters > kPassBudget) return Fail(6, kPassBudgetSpent);
    // A call that took text from behind a painted range leaves that paint.
    while (!level.Ranges.empty() && level.Ranges.back().stop > level.Pending.size()) PopRange(level);
    level.Ranges.push_back({macro, level.Pending.size()});
    ++macro->Painted;
    level.Pending.append(text.rbegin(), text.rend());
    return true;
  }

  Assembler& as_;
  CStyleProcessor& c_;
  bool conditionView_;
  size_t budget_ = 0;
};

}  // namespace

const CMacro* FindCMacro(const Assembler& as, std::string_view name, bool conditionView) {
  return Lookup(as.CStyle, name, NameHash(name), conditionView);
}

bool ExpandCMacros(Assembler& as, std::string& text, bool conditionView) {
  CStyleProcessor& c = as.CStyle;
  if (c.Macros.empty()) return true;
  size_t first = FirstReplacement(c, text, conditionView);
  if (first == std::string_view::npos) return true;
  Expander expander(as, conditionView);
  CExpansionLevel& top = expander.Level(0);
  if (!expander.Run(text, 0, first)) return false;
  text.swap(top.Out);
  return true;
}

}  // namespace ta51
