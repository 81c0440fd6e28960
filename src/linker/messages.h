// Every complaint of tl51, by number, from one catalogue. A text holds `%s`
// where its details go, in order.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace ta51::linker {

enum class Msg : uint8_t {
  // Command line: status 2.
  UnknownOption,
  MissingValue,
  BadRange,
  BadFill,
  NoInput,
  OutputIsInput,
  // Files.
  CannotOpen,
  LibraryNotFound,
  CannotWrite,
  // Records of a module.
  UnknownRecord,
  BadRecord,
  NoRecordEnd,
  BadNumber,
  NoModuleEnd,
  TextAfterEnd,
  NotAModule,
  UnknownSegment,
  DuplicateSegment,
  OutOfPlace,
  BadFieldSize,
  UnclosedBlock,
  StrayBlockEnd,
  NoLoadAddress,
  // Modules together.
  CodeBanks,
  SegmentMismatch,
  AbsoluteOutside,
  AbsoluteOverlap,
  NoRoom,
  DuplicatePublic,
  Unresolved,
  // Values.
  RelativeRange,
  ByteRange,
  WordRange,
  BlockRange,
  BitRange,
  DivideByZero,
  BadExpression,
  NestedTooDeep,
  NoSuchSegment,
  NoSuchExternal,
  Circular,
  PublicValue,
  LoadOutside,
  LoadNotCode,
  LoadTwice,
  OutOfMemory,
  Count
};

struct MessageRow {
  Msg id;
  std::string_view text;
};

// The text of a message with its details put in.
std::string FormatMessage(Msg id, std::span<const std::string_view> details);
inline std::string FormatMessage(Msg id, std::initializer_list<std::string_view> details) {
  return FormatMessage(id, std::span<const std::string_view>(details.begin(), details.size()));
}
std::string_view MessageText(Msg id);

// Numbers as messages write them: hexadecimal with the suffix H, at least
// `digits` digits.
std::string HexNumber(uint32_t value, int digits = 2);

}  // namespace ta51::linker
