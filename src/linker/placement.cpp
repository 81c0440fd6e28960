// Placement: absolute segments where they say, then the relocatable ones,
// the segments with a window largest first, then the aligned ones largest
// first, then the rest in link order, postponed ones last; each at the
// lowest free address that its rule allows, or the highest for HIGH.
#include <algorithm>
#include <optional>

#include "linker/linker.h"
#include "linker/placement_rules.h"
#include "symbols/expression_text.h"

namespace ta51::linker {

namespace {

std::string Describe(const ModuleSegment& segment) {
  std::string text(segment.attribute == 'M' ? "COMMON " : "");
  return text.append(RowOf(segment.space).name);
}

std::string RangeText(Space space, Range range) {
  int digits = RowOf(space).digits;
  if (range.end == range.start) return HexNumber(range.start, digits) + " (empty)";
  if (range.end == range.start + 1) return HexNumber(range.start, digits);
  return HexNumber(range.start, digits) + "-" + HexNumber(range.end - 1, digits);
}

class Placer {
 public:
  explicit Placer(Linker& linker) : linker_(linker) {}

  void Run() {
    BuildGroups();
    for (size_t group = 0; group < linker_.groups.size(); ++group)
      if (linker_.groups[group].absolute) PlaceAbsolute(static_cast<int>(group));
    std::vector<int> order;
    for (size_t group = 0; group < linker_.groups.size(); ++group)
      if (!linker_.groups[group].absolute) order.push_back(static_cast<int>(group));
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) { return SortKey(a) < SortKey(b); });
    for (int group : order) PlaceRelocatable(group);
  }

 private:
  ModuleSegment& PartSegment(const SegmentGroup::Part& part) {
    return linker_.modules[static_cast<size_t>(part.module)].segments[static_cast<size_t>(part.segment)];
  }
  const std::string& ModuleName(const SegmentGroup::Part& part) {
    return linker_.modules[static_cast<size_t>(part.module)].name;
  }

  void BuildGroups() {
    for (int module : linker_.linkOrder) {
      std::vector<ModuleSegment>& segments = linker_.modules[static_cast<size_t>(module)].segments;
      for (size_t index = 0; index < segments.size(); ++index) AddPart(module, static_cast<int>(index), segments[index]);
    }
  }

  void AddPart(int module, int index, ModuleSegment& segment) {
    if (!segment.absolute) {
      auto found = linker_.groupByName.find(segment.name);
      if (found != linker_.groupByName.end()) {
        SegmentGroup& group = linker_.groups[static_cast<size_t>(found->second)];
        const ModuleSegment& first = PartSegment(group.parts.front());
        if (first.space != segment.space || (first.attribute == 'M') != (segment.attribute == 'M')) {
          linker_.Report(linker_.PathOf(linker_.modules[static_cast<size_t>(module)]), Msg::SegmentMismatch,
                         {segment.name, Describe(first), ModuleName(group.parts.front()), Describe(segment),
                          linker_.modules[static_cast<size_t>(module)].name});
          return;
        }
        if (group.placement == 0) group.placement = segment.placement;
        group.parts.push_back({module, index});
        segment.group = found->second;
        return;
      }
      linker_.groupByName.emplace(segment.name, static_cast<int>(linker_.groups.size()));
    }
    SegmentGroup& group = linker_.groups.emplace_back();
    group.name = segment.name;
    group.space = segment.space;
    group.absolute = segment.absolute;
    group.common = segment.attribute == 'M';
    group.registerBank = segment.registerBank;
    group.placement = segment.placement;
    group.order = static_cast<int>(linker_.groups.size() - 1);
    group.parts.push_back({module, index});
    segment.group = group.order;
    if (segment.absolute) {
      group.base = segment.load;
      group.size = segment.size;
    }
  }

  void PlaceAbsolute(int index) {
    SegmentGroup& group = linker_.groups[static_cast<size_t>(index)];
    ModuleSegment& segment = PartSegment(group.parts.front());
    const Module& module = linker_.modules[static_cast<size_t>(group.parts.front().module)];
    segment.base = segment.load;
    group.placed = true;
    uint64_t end = uint64_t{segment.load} + segment.size;
    if (end > RowOf(group.space).limit) {
      linker_.Report(linker_.PathOf(module), Msg::AbsoluteOutside,
                     {RowOf(group.space).name, HexText(segment.number), module.name,
                      HexNumber(RowOf(group.space).limit - 1, RowOf(group.space).digits)});
      return;
    }
    Range range{segment.load, static_cast<uint32_t>(end)};
    Range overlap;
    int owner = linker_.memory.FindConflict(group.space, range, overlap);
    if (owner >= 0) {
      const SegmentGroup& other = linker_.groups[static_cast<size_t>(owner)];
      // Modules that use one register bank each bring its segment along.
      if (group.registerBank >= 0 && other.registerBank == group.registerBank) return;
      linker_.Report(linker_.PathOf(module), Msg::AbsoluteOverlap,
                     {ModuleName(other.parts.front()), module.name, RowOf(group.space).name,
                      RangeText(group.space, overlap)});
    }
    linker_.memory.Occupy(group.space, range, index);
  }

  // Class of a group: 0 with a window, 1 aligned, 2 plain; postponed last.
  struct Key {
    int postponed, kind, rank;
    int64_t size;
    int order;
    bool operator<(const Key& other) const {
      return std::tie(postponed, kind, rank, size, order) <
             std::tie(other.postponed, other.kind, other.rank, other.size, other.order);
    }
  };

  Key SortKey(int index) {
    const SegmentGroup& group = linker_.groups[static_cast<size_t>(index)];
    int kind = 2;
    uint64_t size = 0;
    for (const SegmentGroup::Part& part : group.parts) {
      const ModuleSegment& segment = PartSegment(part);
      if (segment.rule.HasWindow()) kind = 0;
      else if (segment.rule.align > 1) kind = std::min(kind, 1);
      size = group.common ? std::max<uint64_t>(size, segment.size) : size + segment.size;
    }
    return {group.placement == 'P' ? 1 : 0, kind, RowOf(group.space).placementRank,
            kind == 2 ? 0 : -static_cast<int64_t>(size), group.order};
  }

  std::vector<GroupPart> Parts(const SegmentGroup& group) {
    std::vector<GroupPart> parts;
    for (const SegmentGroup::Part& part : group.parts) {
      const ModuleSegment& segment = PartSegment(part);
      parts.push_back({segment.rule, segment.size});
    }
    return parts;
  }

  void PlaceRelocatable(int index) {
    SegmentGroup& group = linker_.groups[static_cast<size_t>(index)];
    std::vector<GroupPart> parts = Parts(group);
    Range window = linker_.options.windows[static_cast<int>(group.space)];
    std::vector<Range> free = linker_.memory.FreeRanges(group.space, window);
    std::vector<uint32_t> bases;
    std::optional<Range> placed;
    bool high = group.placement == 'H';
    for (size_t i = 0; i < free.size() && !placed; ++i) {
      const Range& range = free[high ? free.size() - 1 - i : i];
      placed = high ? FitHigh(parts, group.common, range, bases) : FitLow(parts, group.common, range, bases);
    }
    if (!placed && TotalSize(parts, group.common) == 0) {
      placed = Range{window.start, window.start};  // takes no room: any address will do
      bases.assign(parts.size(), window.start);
    }
    if (!placed) return ReportNoRoom(group, parts, free);
    group.base = placed->start;
    group.size = placed->Size();
    group.placed = true;
    for (size_t part = 0; part < group.parts.size(); ++part) PartSegment(group.parts[part]).base = bases[part];
    if (group.size != 0) linker_.memory.Occupy(group.space, *placed, index);
  }

  void ReportNoRoom(const SegmentGroup& group, const std::vector<GroupPart>& parts, const std::vector<Range>& free) {
    std::string ranges;
    for (const Range& range : free) ranges += (ranges.empty() ? "" : ", ") + RangeText(group.space, range);
    const Module& module = linker_.modules[static_cast<size_t>(group.parts.front().module)];
    uint64_t size = TotalSize(parts, group.common);
    linker_.Report(linker_.PathOf(module), Msg::NoRoom,
                   {group.name, module.name, HexNumber(static_cast<uint32_t>(std::min<uint64_t>(size, 0xFFFFFFFF))),
                    group.space == Space::Bit ? "bits" : "bytes", RowOf(group.space).name,
                    ranges.empty() ? "none" : ranges});
  }

  Linker& linker_;
};

}  // namespace

void PlaceSegments(Linker& linker) { Placer(linker).Run(); }

}  // namespace ta51::linker
