// The reader of object modules and libraries: records in, modules out.

#include "symbols/expression_text.h"

#include "linker/linker.h"
#include "linker/record_cursor.h"
#include "platform/platform.h"

namespace ta51::linker {

namespace {

enum class Rec : uint8_t { MB, AD, ST, SA, ASS, ASL, ASQ, ASI, ASP, ASM, NC, NX, NI, CL, NV, LI, SB, IRG, LR, BB, BE, ME };

struct RecordRow {
  std::string_view prefix;
  Rec kind;
};

// Longer prefixes first: "ASS" before "AS" would be found.
constexpr RecordRow kRecords[] = {
    {"ASS", Rec::ASS}, {"ASL", Rec::ASL}, {"ASQ", Rec::ASQ}, {"ASI", Rec::ASI}, {"ASP", Rec::ASP},
    {"ASM", Rec::ASM}, {"IRG", Rec::IRG}, {"MB", Rec::MB},   {"AD", Rec::AD},   {"ST", Rec::ST},
    {"SA", Rec::SA},   {"NC", Rec::NC},   {"NX", Rec::NX},   {"NI", Rec::NI},   {"CL", Rec::CL},
    {"NV", Rec::NV},   {"LI", Rec::LI},   {"SB", Rec::SB},   {"LR", Rec::LR},   {"BB", Rec::BB},
    {"BE", Rec::BE},   {"ME", Rec::ME},
};

const RecordRow* FindRecord(std::string_view text) {
  for (const RecordRow& row : kRecords)
    if (text.substr(0, row.prefix.size()) == row.prefix) return &row;
  return nullptr;
}

bool IsAlphanumeric(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Reads the modules of one file. A record that does not fit ends the file:
// nothing after it can be trusted.
class FileReader {
 public:
  FileReader(Linker& linker, int file) : linker_(linker), file_(file), text_(linker.files[static_cast<size_t>(file)].text) {}

  void ReadAll() {
    size_t at = 0;
    while (at < text_.size() && !failed_) {
      ++record_;
      size_t newLine = text_.find('\n', at);
      if (newLine == std::string_view::npos || newLine < at + 2 || text_[newLine - 1] != '\r' ||
          text_[newLine - 2] != '.') {
        Fail(Msg::NoRecordEnd, {});
        return;
      }
      Dispatch(text_.substr(at, newLine - 1 - at - 1));
      at = newLine + 1;
    }
    if (!failed_ && module_ != nullptr) Fail(Msg::NoModuleEnd, {module_->name});
    if (!failed_ && linker_.modules.size() == firstModule_) {
      record_ = 1;  // an empty file holds no module at all
      Fail(Msg::NotAModule, {});
    }
  }

 private:
  void Fail(Msg id, std::initializer_list<std::string_view> details) {
    std::string number = std::to_string(record_);
    std::vector<std::string_view> all = {number};
    all.insert(all.end(), details.begin(), details.end());
    linker_.Report(linker_.files[static_cast<size_t>(file_)].path, FormatMessage(id, all));
    failed_ = true;
  }

  void Malformed(Rec kind) {
    for (const RecordRow& row : kRecords)
      if (row.kind == kind) return Fail(Msg::BadRecord, {row.prefix});
  }

  // A number field; a field of letters and digits that is no number of at
  // most eight digits is named as a bad number, anything else as a bad record.
  bool Number(RecordCursor& cursor, uint32_t& value, Rec kind) {
    if (cursor.Hex(value)) return true;
    std::string_view rest = cursor.Rest();
    size_t length = 0;
    while (length < rest.size() && IsAlphanumeric(rest[length])) ++length;
    if (length > 0)
      Fail(Msg::BadNumber, {rest.substr(0, length)});
    else
      Malformed(kind);
    return false;
  }

  bool End(RecordCursor& cursor, Rec kind) {
    if (cursor.AtEnd()) return true;
    Malformed(kind);
    return false;
  }

  void Dispatch(std::string_view record) {
    if (module_ == nullptr) return StartModule(record);
    const RecordRow* row = FindRecord(record);
    if (!blocks_.empty() && (row == nullptr || (row->kind != Rec::BB && row->kind != Rec::BE && row->kind != Rec::ME)))
      return DebugContent(record);
    if (row == nullptr) return Fail(Msg::UnknownRecord, {record.substr(0, 3)});
    if (pendingPublic_ && row->kind != Rec::ASI) return Fail(Msg::OutOfPlace, {"NI"});
    if (row->kind != Rec::IRG) lastSelect_ = -1;
    RecordCursor cursor(record, row->prefix.size());
    switch (row->kind) {
      case Rec::MB: return Fail(Msg::OutOfPlace, {"MB"});
      case Rec::AD: if (!cursor.Literal("8,2,L")) Malformed(Rec::AD); else End(cursor, Rec::AD); return;
      case Rec::ST: return Segment(cursor);
      case Rec::SA: return Alignment(cursor);
      case Rec::ASS: case Rec::ASL: case Rec::ASQ: return SegmentValue(cursor, row->kind);
      case Rec::ASI: return PublicValue(cursor);
      case Rec::ASP: return Location(cursor);
      case Rec::ASM: case Rec::NC: return BankSwitching(cursor, row->kind);
      case Rec::NX: return ExternalName(cursor);
      case Rec::NI: return PublicName(cursor);
      case Rec::CL: return Call(cursor);
      case Rec::NV: return NoOverlay(cursor);
      case Rec::LI: return Libraries(cursor);
      case Rec::SB: return Select(cursor);
      case Rec::IRG: return Relocation(cursor);
      case Rec::LR: return Load(cursor, record);
      case Rec::BB: return BlockBegin(cursor);
      case Rec::BE: return BlockEnd(cursor);
      case Rec::ME: return ModuleEnd(cursor);
    }
  }

  void StartModule(std::string_view record) {
    if (record.substr(0, 2) != "MB")
      return Fail(linker_.modules.size() == firstModule_ ? Msg::NotAModule : Msg::TextAfterEnd, {});
    RecordCursor cursor(record, 2);
    std::string name;
    if (!cursor.Literal("8051,") || !cursor.CountedName(name, 2, std::string_view("\0", 1), true))
      return Malformed(Rec::MB);
    Module& module = linker_.modules.emplace_back();
    module.name = name;
    module.file = file_;
    module.firstRecord = record_;
    module.fromLibrary = linker_.files[static_cast<size_t>(file_)].library;
    module_ = &module;
    current_ = -1;
  }

  ModuleSegment* FindSegment(uint32_t number) {
    int index = module_->SegmentIndex(number);
    if (index >= 0) return &module_->segments[static_cast<size_t>(index)];
    Fail(Msg::UnknownSegment, {HexText(number)});
    return nullptr;
  }

  static bool ReadType(RecordCursor& cursor, Space& space) {
    for (const SpaceRow& row : kSpaceRows)
      if (cursor.Literal(row.typeText)) {
        space = row.space;
        return true;
      }
    return false;
  }

  void Segment(RecordCursor& cursor) {
    uint32_t number = 0;
    if (!Number(cursor, number, Rec::ST)) return;
    if (!cursor.Literal(",")) return Malformed(Rec::ST);
    if (cursor.Literal("K,")) return CodeBank(cursor.Rest());
    ModuleSegment segment;
    segment.number = number;
    if (!ReadType(cursor, segment.space)) return Malformed(Rec::ST);
    if (cursor.Literal(",A")) {
      segment.absolute = true;
      if (!cursor.AtEnd() && !RegisterBank(cursor, segment)) return Malformed(Rec::ST);
    } else if (!cursor.Literal(",") || !RelocatableParts(cursor, segment)) {
      return Malformed(Rec::ST);
    }
    if (module_->SegmentIndex(number) >= 0) return Fail(Msg::DuplicateSegment, {HexText(number)});
    module_->segmentByNumber[number] = static_cast<int>(module_->segments.size());
    module_->segments.push_back(std::move(segment));
  }

  static bool RegisterBank(RecordCursor& cursor, ModuleSegment& segment) {
    std::string name;
    if (segment.space != Space::Data || !cursor.Literal(",M,") ||
        !cursor.CountedName(name, 2, std::string_view("\0", 1)))
      return false;
    constexpr std::string_view kPrefix = "Register bank ";
    if (name.size() != kPrefix.size() + 1 || name.compare(0, kPrefix.size(), kPrefix) != 0) return false;
    char bank = name.back();
    if (bank < '0' || bank > '3') return false;
    segment.registerBank = bank - '0';
    return true;
  }

  static bool RelocatableParts(RecordCursor& cursor, ModuleSegment& segment) {
    std::string_view rest = cursor.Rest();
    if (rest.size() >= 2 && rest[1] == ',' && std::string_view("HPOE").find(rest[0]) != std::string_view::npos) {
      segment.placement = rest[0];
      cursor.Skip(2);
      rest = cursor.Rest();
    }
    if (rest.size() >= 2 && rest[1] == ',' && std::string_view("VMK").find(rest[0]) != std::string_view::npos) {
      segment.attribute = rest[0];
      cursor.Skip(2);
    }
    if (!cursor.CountedName(segment.name, 2, std::string_view(",\0", 2)) || segment.name.empty()) return false;
    if (cursor.Literal(",")) {
      if (!cursor.Hex(segment.owner)) return false;
      segment.hasOwner = true;
    }
    return cursor.AtEnd();
  }

  void Alignment(RecordCursor& cursor) {
    uint32_t number = 0, first = 0, second = 0;
    if (!Number(cursor, number, Rec::SA)) return;
    if (!cursor.Literal(",")) return Malformed(Rec::SA);
    if (!Number(cursor, first, Rec::SA)) return;
    bool window = cursor.Literal(",");
    if (window && !Number(cursor, second, Rec::SA)) return;
    if (!End(cursor, Rec::SA)) return;
    ModuleSegment* segment = FindSegment(number);
    if (segment == nullptr) return;
    if (segment->absolute || (window ? second == 0 : first == 0)) return Malformed(Rec::SA);
    if (window)
      segment->rule.windowBase = first, segment->rule.windowSize = second;
    else
      segment->rule.align = first;
  }

  void SegmentValue(RecordCursor& cursor, Rec kind) {
    uint32_t number = 0, value = 0;
    if (!Number(cursor, number, kind)) return;
    if (!cursor.Literal(",")) return Malformed(kind);
    if (!Number(cursor, value, kind) || !End(cursor, kind)) return;
    ModuleSegment* segment = FindSegment(number);
    if (segment == nullptr) return;
    if (kind == Rec::ASS) segment->size = value;
    if (kind == Rec::ASQ) segment->reserved = value;
    if (kind == Rec::ASL) {
      if (!segment->absolute) return Fail(Msg::OutOfPlace, {"ASL"});
      segment->load = value;
      segment->hasLoad = true;
    }
  }

  void ExternalName(RecordCursor& cursor) {
    External external;
    if (!Number(cursor, external.number, Rec::NX)) return;
    if (!cursor.Literal(",") || !cursor.CountedName(external.name, 2, std::string_view("\0", 1)) ||
        external.name.empty())
      return Malformed(Rec::NX);
    module_->externalByNumber[external.number] = static_cast<int>(module_->externals.size());
    module_->externals.push_back(std::move(external));
  }

  void PublicName(RecordCursor& cursor) {
    Public symbol;
    if (!Number(cursor, pendingNumber_, Rec::NI)) return;
    if (!cursor.Literal(",") || !cursor.CountedName(symbol.name, 2, std::string_view("\0", 1)) ||
        symbol.name.empty())
      return Malformed(Rec::NI);
    symbol.record = record_;
    module_->publics.push_back(std::move(symbol));
    pendingPublic_ = true;
  }

  void PublicValue(RecordCursor& cursor) {
    uint32_t number = 0;
    if (!pendingPublic_) return Fail(Msg::OutOfPlace, {"ASI"});
    if (!Number(cursor, number, Rec::ASI)) return;
    if (number != pendingNumber_ || !cursor.Literal(",") || cursor.AtEnd()) return Malformed(Rec::ASI);
    module_->publics.back().text = cursor.Rest();
    pendingPublic_ = false;
  }

  void Call(RecordCursor& cursor) {
    CallTarget call;
    if (!Number(cursor, call.segment, Rec::CL)) return;
    if (!cursor.Literal(",") || cursor.AtEnd()) return Malformed(Rec::CL);
    call.text = cursor.Rest();
    module_->calls.push_back(call);
  }

  void NoOverlay(RecordCursor& cursor) {
    std::string name;
    if (!cursor.CountedName(name, 2, std::string_view("\0", 1))) return Malformed(Rec::NV);
    module_->noOverlay.push_back(std::move(name));
  }

  void Libraries(RecordCursor& cursor) {
    do {
      std::string name;
      if (!cursor.CountedName(name, 2, std::string_view(",\0", 2)) || name.empty()) return Malformed(Rec::LI);
      module_->libraries.push_back(std::move(name));
    } while (cursor.Literal(","));
    End(cursor, Rec::LI);
  }

  // NC names a switching method and ASM a bank's number; the bank's own ST
  // record names it. Each marks the module as using code banks.
  void BankSwitching(RecordCursor& cursor, Rec kind) {
    uint32_t bank = 0;
    if (kind == Rec::ASM && cursor.Hex(bank) && module_->bankName.empty()) module_->bankName = std::string("number ").append(HexText(bank));
    sawBanks_ = true;
  }

  void CodeBank(std::string_view rest) {
    if (!module_->bankName.empty()) return;
    RecordCursor cursor(rest);
    std::string name;
    module_->bankName = cursor.CountedName(name, 2, std::string_view(",\0", 2)) ? name : std::string("?");
  }

  void Select(RecordCursor& cursor) {
    uint32_t number = 0;
    if (!Number(cursor, number, Rec::SB) || !End(cursor, Rec::SB)) return;
    if (FindSegment(number) == nullptr) return;
    current_ = static_cast<int64_t>(number);
    lastSelect_ = current_;
    module_->body.push_back({BodyKind::Select, number, {}});
  }

  void Relocation(RecordCursor& cursor) {
    uint32_t number = 0;
    if (!cursor.Literal(",R")) return Malformed(Rec::IRG);
    if (!Number(cursor, number, Rec::IRG) || !End(cursor, Rec::IRG)) return;
    if (lastSelect_ != static_cast<int64_t>(number)) Fail(Msg::OutOfPlace, {"IRG"});
    lastSelect_ = -1;
  }

  void Location(RecordCursor& cursor) {
    uint32_t value = 0;
    if (!cursor.Literal(",")) return Malformed(Rec::ASP);
    if (!Number(cursor, value, Rec::ASP) || !End(cursor, Rec::ASP)) return;
    if (current_ < 0) return Fail(Msg::OutOfPlace, {"ASP"});
    module_->body.push_back({BodyKind::SetLocation, value, {}});
  }

  void Load(RecordCursor& cursor, std::string_view record) {
    if (current_ < 0) return Fail(Msg::OutOfPlace, {"LR"});
    LoadItem item;
    bool any = false;
    for (;;) {
      ItemResult result = NextLoadItem(cursor, item);
      if (result == ItemResult::End) break;
      if (result == ItemResult::BadSize) return Fail(Msg::BadFieldSize, {std::to_string(item.size)});
      if (result == ItemResult::Bad) return Malformed(Rec::LR);
      any = true;
    }
    if (!any) return Malformed(Rec::LR);
    module_->body.push_back({BodyKind::Load, record_, record.substr(2)});
  }

  void BlockBegin(RecordCursor& cursor) {
    uint32_t type = 0;
    if (!Number(cursor, type, Rec::BB)) return;
    std::string file = blocks_.empty() ? std::string() : blocks_.back().file;
    if (type == 5) {
      std::string name;
      if (!cursor.Literal(",0,") || !cursor.CountedName(name, 2, std::string_view("\0", 1), true))
        return Malformed(Rec::BB);
      if (!name.empty()) file = name;  // a nested block with no name goes on in its file
    }
    blocks_.push_back({type, file});
  }

  void BlockEnd(RecordCursor& cursor) {
    uint32_t type = 0;
    if (!Number(cursor, type, Rec::BE)) return;
    if (blocks_.empty() || blocks_.back().type != type) return Fail(Msg::StrayBlockEnd, {HexText(type)});
    blocks_.pop_back();
  }

  // A record inside a debug block. Only the lines of a BB5 block are kept:
  // "ATN<n>,<bank>,7,<line>,0" and then "ASN<n>,<address>".
  void DebugContent(std::string_view record) {
    if (blocks_.back().type != 5) return;
    RecordCursor cursor(record);
    uint32_t number = 0, bank = 0, line = 0;
    if (cursor.Literal("ATN") && cursor.Hex(number) && cursor.Literal(",") && cursor.Hex(bank) &&
        cursor.Literal(",7,") && cursor.Hex(line)) {
      pendingLine_ = line;
      hasPendingLine_ = true;
    } else if (cursor.Literal("ASN") && cursor.Hex(number) && cursor.Literal(",") && hasPendingLine_) {
      module_->lines.push_back({blocks_.back().file, pendingLine_, cursor.Rest()});
      hasPendingLine_ = false;
    }
  }

  void ModuleEnd(RecordCursor& cursor) {
    if (!End(cursor, Rec::ME)) return;
    if (!blocks_.empty()) return Fail(Msg::UnclosedBlock, {HexText(blocks_.back().type)});
    for (const ModuleSegment& segment : module_->segments)
      if (segment.absolute && !segment.hasLoad) return Fail(Msg::NoLoadAddress, {HexText(segment.number)});
    if (sawBanks_ && module_->bankName.empty()) module_->bankName = "?";
    sawBanks_ = false;
    module_ = nullptr;
  }

  struct Block {
    uint32_t type;
    std::string file;
  };

  Linker& linker_;
  int file_;
  std::string_view text_;
  size_t firstModule_ = linker_.modules.size();
  Module* module_ = nullptr;
  uint32_t record_ = 0;
  bool failed_ = false;
  int64_t current_ = -1;     // segment of the last SB
  int64_t lastSelect_ = -1;  // segment of an SB just read, for its IRG
  bool pendingPublic_ = false;
  uint32_t pendingNumber_ = 0;
  std::vector<Block> blocks_;
  uint32_t pendingLine_ = 0;
  bool hasPendingLine_ = false;
  bool sawBanks_ = false;
};

}  // namespace

bool ReadInputFile(Linker& linker, const std::string& path, bool library) {
  std::string text;
  if (!ReadWholeFile(path, text)) return false;
  InputText& file = linker.files.emplace_back();
  file.path = path;
  file.text = std::move(text);
  file.library = library;
  FileReader(linker, static_cast<int>(linker.files.size() - 1)).ReadAll();
  return true;
}

}  // namespace ta51::linker
