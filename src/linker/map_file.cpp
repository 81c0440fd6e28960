// The map: what went where. Deterministic: no dates, paths as given.
#include "linker/map_file.h"

#include <algorithm>
#include <cinttypes>

#include "linker/evaluate.h"
#include "symbols/expression_text.h"

namespace ta51::linker {

namespace {

std::string Address(Space space, uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*X", value > 0xFFFF ? 8 : RowOf(space).digits, value);
  return text;
}

class MapWriter {
 public:
  MapWriter(Linker& linker, FILE* stream) : linker_(linker), out_(stream) {}

  void Write(const std::string& output) {
    std::fprintf(out_, "tl51 map of %s\n", output.c_str());
    Modules();
    Segments();
    Publics();
    FreeRanges();
    CallTargets();
    NoOverlay();
    LineTable();
  }

 private:
  void Heading(const char* title) { std::fprintf(out_, "\n%s\n", title); }

  void Modules() {
    Heading("Modules, in link order");
    for (int index : linker_.linkOrder) {
      const Module& module = linker_.modules[static_cast<size_t>(index)];
      std::fprintf(out_, "  %-20s %s%s\n", module.name.c_str(), linker_.PathOf(module).c_str(),
                   module.fromLibrary ? " (library)" : "");
    }
  }

  void Segments() {
    Heading("Segments, by space and address");
    std::fprintf(out_, "  %-6s %-8s %-8s %-8s %-20s %s\n", "Space", "Start", "End", "Size", "Segment", "Modules");
    std::vector<const SegmentGroup*> groups;
    for (const SegmentGroup& group : linker_.groups)
      if (group.placed) groups.push_back(&group);
    std::stable_sort(groups.begin(), groups.end(), [](const SegmentGroup* a, const SegmentGroup* b) {
      return std::tie(a->space, a->base) < std::tie(b->space, b->base);
    });
    for (const SegmentGroup* group : groups) {
      std::string modules;
      for (const SegmentGroup::Part& part : group->parts) {
        const std::string& name = linker_.modules[static_cast<size_t>(part.module)].name;
        if (modules.size() < name.size() || modules.compare(modules.size() - name.size(), name.size(), name) != 0)
          modules.append(modules.empty() ? "" : ", ").append(name);
      }
      std::string name = group->absolute ? (group->registerBank >= 0 ? std::string("(register bank ").append(std::to_string(group->registerBank)).append(")")
                                                                      : std::string("(absolute)"))
                                         : group->name;
      // An owner (the predefined segment of a compiler's output) is only noted.
      const ModuleSegment& first = linker_.modules[static_cast<size_t>(group->parts.front().module)]
                                       .segments[static_cast<size_t>(group->parts.front().segment)];
      if (first.hasOwner) modules.append("  owner ").append(HexText(first.owner));
      std::string end = group->size == 0 ? "-" : Address(group->space, group->base + group->size - 1);
      std::fprintf(out_, "  %-6s %-8s %-8s %-8s %-20s %s\n", std::string(RowOf(group->space).name).c_str(),
                   Address(group->space, group->base).c_str(), end.c_str(), Address(group->space, group->size).c_str(),
                   name.c_str(), modules.c_str());
    }
  }

  struct Symbol {
    const Public* entry;
    const Module* module;
    std::string space;
    int rank;
  };

  void Publics() {
    std::vector<Symbol> symbols;
    for (int index : linker_.linkOrder) {
      const Module& module = linker_.modules[static_cast<size_t>(index)];
      for (const Public& entry : module.publics) {
        if (entry.state != ValueState::Done) continue;
        Symbol symbol{&entry, &module, "NUMBER", kSpaceCount};
        if (entry.segment >= 0) {
          Space space = module.segments[static_cast<size_t>(entry.segment)].space;
          symbol.space = RowOf(space).name;
          symbol.rank = static_cast<int>(space);
        }
        symbols.push_back(symbol);
      }
    }
    std::sort(symbols.begin(), symbols.end(),
              [](const Symbol& a, const Symbol& b) { return a.entry->name < b.entry->name; });
    Heading("Public symbols, by name");
    for (const Symbol& symbol : symbols) WriteSymbol(symbol);
    std::stable_sort(symbols.begin(), symbols.end(), [](const Symbol& a, const Symbol& b) {
      return std::tie(a.rank, a.entry->value) < std::tie(b.rank, b.entry->value);
    });
    Heading("Public symbols, by address");
    for (const Symbol& symbol : symbols) WriteSymbol(symbol);
  }

  void WriteSymbol(const Symbol& symbol) {
    std::fprintf(out_, "  %-24s %08" PRIX32 "  %-6s %s\n", symbol.entry->name.c_str(),
                 static_cast<uint32_t>(symbol.entry->value), symbol.space.c_str(), symbol.module->name.c_str());
  }

  void FreeRanges() {
    Heading("Free ranges open to relocatable segments");
    for (const SpaceRow& row : kSpaceRows) {
      std::string ranges;
      for (const Range& range : linker_.memory.FreeRanges(row.space, linker_.options.windows[static_cast<int>(row.space)]))
        ranges.append(ranges.empty() ? "" : ", ")
            .append(Address(row.space, range.start))
            .append("-")
            .append(Address(row.space, range.end - 1));
      std::fprintf(out_, "  %-6s %s\n", std::string(row.name).c_str(), ranges.empty() ? "none" : ranges.c_str());
    }
  }

  void CallTargets() {
    bool any = false;
    for (int index : linker_.linkOrder) {
      const Module& module = linker_.modules[static_cast<size_t>(index)];
      for (const CallTarget& call : module.calls) {
        if (!any) Heading("Call targets");
        any = true;
        EvalResult result = EvaluateText(linker_, index, call.text);
        std::string target = result.status == EvalStatus::Ok ? Address(Space::Code, static_cast<uint32_t>(result.value)) : "?";
        std::fprintf(out_, "  %-20s %-6s %.*s\n", module.name.c_str(), target.c_str(), static_cast<int>(call.text.size()),
                     call.text.data());
      }
    }
  }

  void NoOverlay() {
    bool any = false;
    for (int index : linker_.linkOrder) {
      const Module& module = linker_.modules[static_cast<size_t>(index)];
      for (const std::string& name : module.noOverlay) {
        if (!any) Heading("Not to be overlaid");
        any = true;
        std::fprintf(out_, "  %-20s %s\n", module.name.c_str(), name.c_str());
      }
    }
  }

  void LineTable() {
    struct Line {
      uint32_t address;
      const LineMark* mark;
    };
    std::vector<Line> lines;
    for (int index : linker_.linkOrder)
      for (const LineMark& mark : linker_.modules[static_cast<size_t>(index)].lines) {
        EvalResult result = EvaluateText(linker_, index, mark.address);
        if (result.status == EvalStatus::Ok) lines.push_back({static_cast<uint32_t>(result.value), &mark});
      }
    if (lines.empty()) return;
    std::stable_sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.address < b.address; });
    Heading("Lines");
    for (const Line& line : lines)
      std::fprintf(out_, "  %s  %s(%" PRIu32 ")\n", Address(Space::Code, line.address).c_str(), line.mark->file.c_str(),
                   line.mark->line);
  }

  Linker& linker_;
  FILE* out_;
};

}  // namespace

void WriteMap(Linker& linker, FILE* stream, const std::string& output) { MapWriter(linker, stream).Write(output); }

}  // namespace ta51::linker
