// The message catalogue of tl51: one row per message.
#include "linker/messages.h"

#include <cstdio>

namespace ta51::linker {

namespace {

constexpr MessageRow kMessages[] = {
    {Msg::UnknownOption, "unknown option %s"},
    {Msg::MissingValue, "option %s needs a value"},
    {Msg::BadRange, "%s wants a range LO-HI of hexadecimal addresses within %s, not '%s'"},
    {Msg::BadFill, "--fill wants a hexadecimal byte, not '%s'"},
    {Msg::NoInput, "no object module or library given"},
    {Msg::OutputIsInput, "the output file %s is also an input"},
    {Msg::CannotOpen, "cannot open %s"},
    {Msg::LibraryNotFound, "library %s, named by module %s, not found"},
    {Msg::CannotWrite, "cannot write %s"},
    {Msg::UnknownRecord, "record %s: unknown record '%s'"},
    {Msg::BadRecord, "record %s: malformed %s record"},
    {Msg::NoRecordEnd, "record %s: no \".\\r\\n\" at its end"},
    {Msg::BadNumber, "record %s: '%s' is not a hexadecimal number"},
    {Msg::NoModuleEnd, "record %s: module %s has no ME record"},
    {Msg::TextAfterEnd, "record %s: text after ME that is not another module"},
    {Msg::NotAModule, "record %s: not an object module, no MB record"},
    {Msg::UnknownSegment, "record %s: segment %s is not declared in the module"},
    {Msg::DuplicateSegment, "record %s: segment %s is declared twice"},
    {Msg::OutOfPlace, "record %s: %s record out of place"},
    {Msg::BadFieldSize, "record %s: a field of %s bytes"},
    {Msg::UnclosedBlock, "record %s: debug block BB%s is not closed"},
    {Msg::StrayBlockEnd, "record %s: BE%s closes no open block"},
    {Msg::NoLoadAddress, "record %s: absolute segment %s has no ASL record"},
    {Msg::CodeBanks, "module %s uses code bank %s: code banks are not supported yet"},
    {Msg::SegmentMismatch, "segment %s is %s in module %s but %s in module %s"},
    {Msg::AbsoluteOutside, "absolute %s segment %s of module %s ends past %s"},
    {Msg::AbsoluteOverlap, "absolute segments of modules %s and %s overlap at %s %s"},
    {Msg::NoRoom, "segment %s of module %s, %s %s, fits nowhere in %s; free: %s"},
    {Msg::DuplicatePublic, "public symbol %s is defined in module %s and in module %s"},
    {Msg::Unresolved, "external symbol %s is defined by no module; used by %s"},
    {Msg::RelativeRange, "Relative jump out of range : distance %s"},
    {Msg::ByteRange, "Value does not fit in a byte : %s"},
    {Msg::WordRange, "Value does not fit in a word : %s"},
    {Msg::BlockRange, "AJMP/ACALL target outside its 2K block : target %s"},
    {Msg::BitRange, "Bit address outside the bit-addressable RAM : byte %s"},
    {Msg::DivideByZero, "Divide by zero : %s"},
    {Msg::BadExpression, "Bad expression text : %s"},
    {Msg::NestedTooDeep, "Expression nested too deeply : %s"},
    {Msg::NoSuchSegment, "Segment %s is not declared in module %s : %s"},
    {Msg::NoSuchExternal, "External %s is not declared in module %s : %s"},
    {Msg::Circular, "public symbol %s of module %s is defined through itself"},
    {Msg::PublicValue, "public symbol %s of module %s: %s"},
    {Msg::LoadOutside, "load data outside segment %s of module %s, at offset %s"},
    {Msg::LoadNotCode, "load data in %s segment %s of module %s: only code memory has an image"},
    {Msg::LoadTwice, "code address %s is loaded twice, by module %s and by module %s"},
    {Msg::OutOfMemory, "not enough memory"},
};

static_assert(sizeof kMessages / sizeof kMessages[0] == static_cast<size_t>(Msg::Count), "one row per message");

constexpr bool RowsInOrder() {
  for (size_t i = 0; i < static_cast<size_t>(Msg::Count); ++i)
    if (static_cast<size_t>(kMessages[i].id) != i) return false;
  return true;
}
static_assert(RowsInOrder(), "row i holds message i");

}  // namespace

std::string_view MessageText(Msg id) { return kMessages[static_cast<size_t>(id)].text; }

std::string FormatMessage(Msg id, std::span<const std::string_view> details) {
  std::string_view text = MessageText(id);
  std::string message;
  auto detail = details.begin();
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%' && at + 1 < text.size() && text[at + 1] == 's') {
      if (detail != details.end()) message += *detail++;
      ++at;
    } else {
      message += text[at];
    }
  }
  return message;
}

std::string HexNumber(uint32_t value, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*XH", digits, value);
  return text;
}

}  // namespace ta51::linker
