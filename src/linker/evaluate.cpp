// The reader of expression text. Its language is the assembler's own: seven
// levels, left-associative binary operators, HIGH, LOW and NOT taking
// everything to their right, unary minus taking a product. Its terms are
// hexadecimal numbers, &decimal numbers, and R<n>, X<n>, L<n>.
#include "linker/evaluate.h"

#include <cstring>

#include "linker/record_cursor.h"
#include "symbols/expression_text.h"

namespace ta51::linker {

namespace {

class TextEvaluator {
 public:
  TextEvaluator(Linker& linker, int module, std::string_view text)
      : linker_(linker), module_(linker.modules[static_cast<size_t>(module)]), moduleIndex_(module), text_(text) {}

  EvalResult Run() {
    int32_t value = Expression(1);
    SkipBlanks();
    if (result_.status == EvalStatus::Ok && at_ != text_.size()) Fail(EvalStatus::Syntax);
    if (result_.status == EvalStatus::Ok) result_.value = value;
    return result_;
  }

 private:
  bool Ok() const { return result_.status == EvalStatus::Ok; }
  int32_t Fail(EvalStatus status, uint32_t number = 0) {
    if (Ok()) {
      result_.status = status;
      result_.number = number;
    }
    return 0;
  }

  void SkipBlanks() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
  }

  // The operator at the read position. The view is not zero-terminated, so
  // the longest spelling is copied out first.
  const OperatorRow* OperatorHere() const {
    char window[8] = {};
    size_t length = std::min<size_t>(sizeof window - 1, text_.size() - at_);
    std::memcpy(window, text_.data() + at_, length);
    return MatchOperator(window, IsNameChar);
  }

  // Binary operators of `minLevel` and tighter, by precedence climbing.
  int32_t Expression(int minLevel) {
    struct DepthGuard {
      explicit DepthGuard(int& depth) : depth_(++depth) {}
      ~DepthGuard() { --depth_; }
      int& depth_;
    } guard(linker_.evaluationDepth);
    if (linker_.evaluationDepth > kMaxEvaluationDepth) return Fail(EvalStatus::TooDeep);
    int32_t left = Unary();
    while (Ok()) {
      SkipBlanks();
      if (at_ >= text_.size()) break;
      const OperatorRow* row = OperatorHere();
      int level = row == nullptr ? 0 : BinaryLevel(row->code);
      if (level == 0 || level < minLevel) break;
      at_ += row->spelling.size();
      int32_t right = Expression(level + 1);
      if (!Ok()) break;
      if (!ApplyBinaryOperator(row->code, left, right, left)) return Fail(EvalStatus::DivideByZero);
    }
    return Ok() ? left : 0;
  }

  int32_t Unary() {
    SkipBlanks();
    if (at_ >= text_.size()) return Fail(EvalStatus::Syntax);
    if (const OperatorRow* row = OperatorHere()) {
      switch (row->code) {
        case TOK_HIGH: case TOK_LOW: case TOK_NOT: case TOK_MINUS: {
          at_ += row->spelling.size();
          int32_t value = Expression(row->code == TOK_MINUS ? 6 : 1);
          return Ok() ? ApplyPrefixOperator(row->code, value) : 0;
        }
        case TOK_PLUS:  // a sign: the primary behind it, counted like any nesting
          at_ += row->spelling.size();
          return Expression(7);
        case TOK_BASE: case TOK_SIZE: {
          at_ += row->spelling.size();
          bool wasSize = sizeWanted_;
          sizeWanted_ = row->code == TOK_SIZE;
          int32_t value = Expression(1);
          sizeWanted_ = wasSize;
          return value;
        }
        default: break;
      }
    }
    return Primary();
  }

  int32_t Primary() {
    char c = text_[at_];
    if (c == '(') {
      ++at_;
      int32_t value = Expression(1);
      SkipBlanks();
      if (!Ok()) return 0;
      if (at_ >= text_.size() || text_[at_] != ')') return Fail(EvalStatus::Syntax);
      ++at_;
      return value;
    }
    if (c == '&') return Decimal();
    if ((c == 'R' || c == 'X' || c == 'L') && at_ + 1 < text_.size() && HexDigitValue(text_[at_ + 1]) >= 0) {
      ++at_;
      uint32_t number = static_cast<uint32_t>(HexRun());
      return c == 'R' ? SegmentBase(number) : c == 'X' ? ExternalValue(number) : SegmentItself(number);
    }
    if (HexDigitValue(c) >= 0) return HexRun();
    return Fail(EvalStatus::Syntax);
  }

  // Hexadecimal digits, modulo 2^32; a name character behind them is no number.
  int32_t HexRun() {
    uint32_t value = 0;
    while (at_ < text_.size() && HexDigitValue(text_[at_]) >= 0)
      value = value << 4 | static_cast<uint32_t>(HexDigitValue(text_[at_++]));
    if (at_ < text_.size() && IsNameChar(text_[at_])) return Fail(EvalStatus::Syntax);
    return static_cast<int32_t>(value);
  }

  int32_t Decimal() {
    ++at_;
    size_t start = at_;
    uint32_t value = 0;
    while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9')
      value = value * 10 + static_cast<uint32_t>(text_[at_++] - '0');
    if (at_ == start || (at_ < text_.size() && IsNameChar(text_[at_]))) return Fail(EvalStatus::Syntax);
    return static_cast<int32_t>(value);
  }

  const ModuleSegment* Segment(uint32_t number) {
    int index = module_.SegmentIndex(number);
    if (index < 0) {
      Fail(EvalStatus::NoSuchSegment, number);
      return nullptr;
    }
    return &module_.segments[static_cast<size_t>(index)];
  }

  // R<n>: this module's part of the segment; an absolute segment's values
  // already hold addresses, so it adds nothing.
  int32_t SegmentBase(uint32_t number) {
    const ModuleSegment* segment = Segment(number);
    if (segment == nullptr || segment->absolute) return 0;
    return static_cast<int32_t>(segment->base);
  }

  // L<n>: the whole segment, all parts joined: its base, or its size under `SIZE.
  int32_t SegmentItself(uint32_t number) {
    const ModuleSegment* segment = Segment(number);
    if (segment == nullptr) return 0;
    if (segment->absolute) return static_cast<int32_t>(sizeWanted_ ? segment->size : segment->load);
    if (segment->group < 0) return 0;
    const SegmentGroup& group = linker_.groups[static_cast<size_t>(segment->group)];
    return static_cast<int32_t>(sizeWanted_ ? group.size : group.base);
  }

  int32_t ExternalValue(uint32_t number) {
    const External* external = module_.FindExternal(number);
    if (external == nullptr) return Fail(EvalStatus::NoSuchExternal, number);
    auto found = linker_.publics.find(external->name);
    if (found == linker_.publics.end()) {
      NoteUnresolved(external->name);
      return Fail(EvalStatus::Unresolved, number);
    }
    EvalResult value = PublicValue(linker_, found->second);
    if (value.status != EvalStatus::Ok) return Fail(value.status == EvalStatus::Circular ? value.status : EvalStatus::Failed);
    return value.value;
  }

  void NoteUnresolved(const std::string& name) {
    auto [entry, added] = linker_.unresolvedIndex.try_emplace(name, linker_.unresolved.size());
    if (added) linker_.unresolved.push_back({name, {}});
    std::vector<int>& users = linker_.unresolved[entry->second].modules;
    if (users.empty() || users.back() != moduleIndex_) users.push_back(moduleIndex_);
  }

  Linker& linker_;
  const Module& module_;
  int moduleIndex_;
  std::string_view text_;
  size_t at_ = 0;
  bool sizeWanted_ = false;
  EvalResult result_;
};

}  // namespace

EvalResult EvaluateText(Linker& linker, int module, std::string_view text) {
  return TextEvaluator(linker, module, text).Run();
}

EvalResult PublicValue(Linker& linker, PublicRef ref) {
  Module& module = linker.modules[static_cast<size_t>(ref.module)];
  Public& symbol = module.publics[static_cast<size_t>(ref.index)];
  switch (symbol.state) {
    case ValueState::Done: return {symbol.value, EvalStatus::Ok, 0};
    case ValueState::Failed: return {0, EvalStatus::Failed, 0};
    case ValueState::Working: return {0, EvalStatus::Circular, 0};
    case ValueState::NotYet: break;
  }
  symbol.state = ValueState::Working;
  EvalResult result = EvaluateText(linker, ref.module, symbol.text);
  if (result.status == EvalStatus::Ok) {
    symbol.state = ValueState::Done;
    symbol.value = result.value;
    return result;
  }
  symbol.state = ValueState::Failed;
  if (result.status == EvalStatus::Circular) {
    linker.Report(linker.PathOf(module), Msg::Circular, {symbol.name, module.name});
  } else {
    std::string why = DescribeFailure(linker, result, ref.module, symbol.text);
    if (!why.empty()) linker.Report(linker.PathOf(module), Msg::PublicValue, {symbol.name, module.name, why});
  }
  return {0, EvalStatus::Failed, 0};
}

std::string DescribeFailure(const Linker& linker, const EvalResult& result, int module, std::string_view text) {
  const std::string& name = linker.modules[static_cast<size_t>(module)].name;
  switch (result.status) {
    case EvalStatus::DivideByZero: return FormatMessage(Msg::DivideByZero, {text});
    case EvalStatus::Syntax: return FormatMessage(Msg::BadExpression, {text});
    case EvalStatus::TooDeep: return FormatMessage(Msg::NestedTooDeep, {text.substr(0, 60)});
    case EvalStatus::NoSuchSegment: return FormatMessage(Msg::NoSuchSegment, {HexText(result.number), name, text});
    case EvalStatus::NoSuchExternal: return FormatMessage(Msg::NoSuchExternal, {HexText(result.number), name, text});
    default: return {};
  }
}

}  // namespace ta51::linker
