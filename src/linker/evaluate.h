// The arithmetic that ta51 leaves to the linker: expression texts of fields
// and public values, worked out once every segment has its address.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "linker/linker.h"

namespace ta51::linker {

enum class EvalStatus : uint8_t {
  Ok,
  DivideByZero,
  Syntax,
  TooDeep,
  NoSuchSegment,
  NoSuchExternal,
  Unresolved,  // an external that no module defines; noted for ReportUnresolved
  Failed,      // a public it needs could not be worked out, which was reported
  Circular,
};

struct EvalResult {
  int32_t value = 0;
  EvalStatus status = EvalStatus::Ok;
  uint32_t number = 0;  // the segment or external of NoSuchSegment, NoSuchExternal
};

// Deepest nesting of parentheses, prefix operators and public values.
constexpr int kMaxEvaluationDepth = 1000;

// The value of `text` in the context of module `module`.
EvalResult EvaluateText(Linker& linker, int module, std::string_view text);
// The value of a public symbol, worked out once; reports its own errors.
EvalResult PublicValue(Linker& linker, PublicRef ref);
// The message of a failed evaluation of `text`, or empty for a failure that
// is reported elsewhere (Unresolved, Failed).
std::string DescribeFailure(const Linker& linker, const EvalResult& result, int module, std::string_view text);

}  // namespace ta51::linker
