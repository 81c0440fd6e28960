// The bodies of the linked modules replayed into the code image: each LR
// record's bytes at its segment's address, each field worked out, checked
// and stored high byte first.
#include <algorithm>

#include "linker/evaluate.h"
#include "linker/record_cursor.h"
#include "symbols/expression_text.h"

namespace ta51::linker {

namespace {

// Opcodes whose last byte is a relative displacement: SJMP, JC, JNC, JZ,
// JNZ, JB, JNB, JBC, DJNZ direct and DJNZ Rn, CJNE.
constexpr bool IsRelativeBranch(uint8_t opcode) {
  switch (opcode) {
    case 0x80: case 0x40: case 0x50: case 0x60: case 0x70: case 0x20: case 0x30: case 0x10: case 0xD5: return true;
    default: return (opcode >= 0xD8 && opcode <= 0xDF) || (opcode >= 0xB4 && opcode <= 0xBF);
  }
}

// The assembler's AJMP/ACALL field covers the whole instruction and holds
// the decimal shift count &13; no other field text has a decimal number.
bool IsBlockJumpText(std::string_view text) { return text.find(" SHL &13)") != std::string_view::npos; }

// The field of `byte.bit` on a relocatable byte: "((byte)-20)*8+bit".
bool IsBitOfByteText(std::string_view text) {
  size_t end = text.size();
  while (end > 0 && HexDigitValue(text[end - 1]) >= 0) --end;
  constexpr std::string_view kTail = ")-20)*8+";
  return end < text.size() && end >= kTail.size() && text.substr(end - kTail.size(), kTail.size()) == kTail;
}

std::string SignedHex(int32_t value) {
  return value < 0 ? std::string("-").append(HexNumber(0u - static_cast<uint32_t>(value)))
                   : HexNumber(static_cast<uint32_t>(value));
}

class CodeLoader {
 public:
  explicit CodeLoader(Linker& linker) : linker_(linker) {}

  void LoadModule(int index) {
    module_ = index;
    Module& module = linker_.modules[static_cast<size_t>(index)];
    reported_.assign(module.segments.size(), false);
    for (ModuleSegment& segment : module.segments) segment.location = segment.absolute ? segment.load : 0;
    ModuleSegment* current = nullptr;
    for (const BodyItem& item : module.body) {
      if (item.kind == BodyKind::Select)
        current = &module.segments[static_cast<size_t>(module.SegmentIndex(item.value))];
      else if (item.kind == BodyKind::SetLocation)
        current->location = item.value;
      else
        LoadRecord(module, *current, item);
    }
  }

 private:
  void LoadRecord(Module& module, ModuleSegment& segment, const BodyItem& item) {
    items_.clear();
    RecordCursor cursor(item.text);
    LoadItem next;
    uint32_t length = 0;
    while (NextLoadItem(cursor, next) == ItemResult::Item) {
      items_.push_back(next);
      length += next.field ? static_cast<uint32_t>(next.size) : static_cast<uint32_t>(next.bytes.size() / 2);
    }
    uint32_t start = segment.location;
    segment.location += length;
    if (!Fits(module, segment, start, length)) return;
    address_ = (segment.absolute ? 0 : segment.base) + start;
    offset_ = segment.absolute ? start - segment.load : start;
    segment_ = &segment;
    uint32_t at = address_;
    for (size_t i = 0; i < items_.size(); ++i) {
      const LoadItem& load = items_[i];
      if (!load.field) {
        for (size_t digit = 0; digit < load.bytes.size(); digit += 2)
          Put(at++, static_cast<uint8_t>(HexDigitValue(load.bytes[digit]) << 4 | HexDigitValue(load.bytes[digit + 1])));
        continue;
      }
      bool relative = load.size == 1 && i + 1 == items_.size() && i > 0 && !items_[0].field &&
                      IsRelativeBranch(FirstByte(items_[0]));
      bool blockJump = load.size == 2 && i == 0 && items_.size() == 1 && IsBlockJumpText(load.text);
      uint32_t value = FieldValue(module, load, relative, blockJump);
      if (load.size == 2) Put(at++, static_cast<uint8_t>(value >> 8));
      Put(at++, static_cast<uint8_t>(value));
    }
  }

  static uint8_t FirstByte(const LoadItem& bytes) {
    return static_cast<uint8_t>(HexDigitValue(bytes.bytes[0]) << 4 | HexDigitValue(bytes.bytes[1]));
  }

  // The record must lie in code memory inside its segment; said once per segment.
  bool Fits(const Module& module, const ModuleSegment& segment, uint32_t start, uint32_t length) {
    size_t index = static_cast<size_t>(&segment - module.segments.data());
    bool inside = segment.space == Space::Code &&
                  uint64_t{start} + length <= uint64_t{segment.absolute ? segment.load : 0} + segment.size &&
                  (!segment.absolute || start >= segment.load);
    if (inside || reported_[index]) return inside;
    reported_[index] = true;
    if (segment.space != Space::Code)
      linker_.Report(linker_.PathOf(module), Msg::LoadNotCode, {RowOf(segment.space).name, SegmentName(segment), module.name});
    else
      linker_.Report(linker_.PathOf(module), Msg::LoadOutside, {SegmentName(segment), module.name, HexNumber(start, 4)});
    return false;
  }

  static std::string SegmentName(const ModuleSegment& segment) {
    if (!segment.absolute) return segment.name;
    return std::string("at ").append(HexNumber(segment.load, RowOf(segment.space).digits));
  }

  uint32_t FieldValue(const Module& module, const LoadItem& field, bool relative, bool blockJump) {
    EvalResult result = EvaluateText(linker_, module_, field.text);
    if (result.status != EvalStatus::Ok) {
      std::string why = DescribeFailure(linker_, result, module_, field.text);
      if (!why.empty()) ReportField(module, field, why);
      return 0;
    }
    int32_t value = result.value;
    if (relative && (value < -128 || value > 127))
      ReportField(module, field, FormatMessage(Msg::RelativeRange, {std::to_string(value)}));
    else if (blockJump)
      CheckBlockJump(module, field, static_cast<uint32_t>(value));
    else if (field.size == 1 && IsBitOfByteText(field.text) && (value < 0 || value > 0x7F))
      ReportField(module, field, FormatMessage(Msg::BitRange, {HexNumber(static_cast<uint32_t>(0x20 + (value >> 3)))}));
    else if (field.size == 1 && (value < -255 || value > 255))
      ReportField(module, field, FormatMessage(Msg::ByteRange, {SignedHex(value)}));
    else if (field.size == 2 && (value < -0xFFFF || value > 0xFFFF))
      ReportField(module, field, FormatMessage(Msg::WordRange, {SignedHex(value)}));
    return static_cast<uint32_t>(value);
  }

  // Bits 16 to 20 of the value hold the target's 2K block XORed with the
  // block of the instruction's own address; the processor takes the block
  // of the instruction that follows, which is what must match.
  void CheckBlockJump(const Module& module, const LoadItem& field, uint32_t value) {
    uint32_t own = address_;
    uint32_t targetBlock = ((value >> 16) & 0x1F) ^ ((own >> 11) & 0x1F);
    uint32_t target = targetBlock << 11 | ((value >> 13) & 7) << 8 | (value & 0xFF);
    if ((value >> 21) != 0 || targetBlock != (((own + 2) >> 11) & 0x1F))
      ReportField(module, field, FormatMessage(Msg::BlockRange, {HexNumber(target, 4)}));
  }

  // A field's message goes under its source reference, the file name with its
  // full stops back; without one it names the module, segment and offset.
  void ReportField(const Module& module, const LoadItem& field, const std::string& message) {
    if (!field.reference.empty()) {
      std::string where(field.reference);
      std::replace(where.begin(), where.end(), '*', '.');
      linker_.Report(where, message);
      return;
    }
    linker_.Report(linker_.PathOf(module), message + " (module " + module.name + ", segment " + SegmentName(*segment_) +
                                              ", offset " + HexNumber(offset_, 4) + ")");
  }

  void Put(uint32_t address, uint8_t byte) {
    int32_t& owner = linker_.imageOwner[address];
    if (owner >= 0) {
      if (!twiceReported_) {
        twiceReported_ = true;
        linker_.Report(linker_.PathOf(linker_.modules[static_cast<size_t>(module_)]), Msg::LoadTwice,
                       {HexNumber(address, 4), linker_.modules[static_cast<size_t>(owner)].name,
                        linker_.modules[static_cast<size_t>(module_)].name});
      }
      return;
    }
    owner = module_;
    linker_.image[address] = byte;
    ++linker_.codeBytes;
  }

  Linker& linker_;
  int module_ = -1;
  std::vector<bool> reported_;
  std::vector<LoadItem> items_;
  const ModuleSegment* segment_ = nullptr;
  uint32_t address_ = 0;
  uint32_t offset_ = 0;
  bool twiceReported_ = false;
};

}  // namespace

void ResolvePublics(Linker& linker) {
  for (int index : linker.linkOrder) {
    Module& module = linker.modules[static_cast<size_t>(index)];
    for (size_t symbol = 0; symbol < module.publics.size(); ++symbol) {
      Public& entry = module.publics[symbol];
      RecordCursor cursor(entry.text);
      uint32_t number = 0, offset = 0;
      if (cursor.Literal("R") && cursor.Hex(number) && cursor.Literal("+") && cursor.Hex(offset) && cursor.AtEnd())
        entry.segment = module.SegmentIndex(number);
      PublicValue(linker, {index, static_cast<int>(symbol)});
    }
  }
}

void LoadCode(Linker& linker) {
  CodeLoader loader(linker);
  for (int index : linker.linkOrder) loader.LoadModule(index);
}

void ReportUnresolved(Linker& linker) {
  for (const UnresolvedUse& use : linker.unresolved) {
    std::string users;
    for (int module : use.modules)
      users.append(users.empty() ? "" : ", ").append(linker.modules[static_cast<size_t>(module)].name);
    const Module& first = linker.modules[static_cast<size_t>(use.modules.front())];
    linker.Report(linker.PathOf(first), Msg::Unresolved, {use.name, users});
  }
}

}  // namespace ta51::linker
