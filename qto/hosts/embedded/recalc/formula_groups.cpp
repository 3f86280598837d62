#include "qto/hosts/embedded/recalc/formula_groups.hpp"

#include <algorithm>
#include <unordered_map>

namespace qto::embedded {
namespace {

/// More comparisons than this take longer than going through all cells.
constexpr std::size_t most_comparisons = 20'000'000;

void widen(Rect& box, CellPos pos) noexcept {
  box.first.row = std::min(box.first.row, pos.row);
  box.first.column = std::min(box.first.column, pos.column);
  box.last.row = std::max(box.last.row, pos.row);
  box.last.column = std::max(box.last.column, pos.column);
}

void list_sheet(const FormulaGraph& graph, std::uint32_t number,
                std::vector<FormulaGroup>& groups) {
  const Sheet& sheet = graph.sheet(number);
  if (sheet.cells.formula_count() == 0) return;
  std::unordered_map<FormulaId, std::size_t> known;
  FormulaId last = 0;
  std::size_t group = 0;
  sheet.cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell&, FormulaId id) {
    if (id == 0) return;
    if (id != last) {
      last = id;
      const auto [entry, added] = known.try_emplace(id, groups.size());
      group = entry->second;
      if (added) {
        const FormulaRecord& record = sheet.book().formula(id);
        const bool normal = record.kind == FormulaKind::normal;
        groups.push_back({{number, id, normal ? pos : record.block.first},
                          normal ? Rect::cell(pos) : record.block});
      }
    }
    widen(groups[group].box, pos);
  });
}

/// The places of an axis seen from the first and the last cell of a group.
struct Interval {
  std::int32_t first, last;
};

Interval places(const formula::RefAxis& axis, std::int32_t first, std::int32_t last) noexcept {
  if (axis.absolute) return {axis.value, axis.value};
  return {first + axis.value, last + axis.value};
}

Interval enclosing(Interval a, Interval b) noexcept {
  return {std::min(a.first, b.first), std::max(a.last, b.last)};
}

class AffectedSearch {
 public:
  AffectedSearch(FormulaGraph& graph, const MarkedCells& changed)
      : graph_(graph), groups_(list_groups(graph)) {
    for (FormulaGroup& group : groups_) {
      const PrecedentList& list = graph.precedents(group.node);
      comparisons_ += list.items.size() * groups_.size();
      if (comparisons_ > most_comparisons) return;
      if (list.is_volatile || may_read(group, list, changed)) take(group);
    }
  }

  FormulaSelection run() {
    if (comparisons_ > most_comparisons) return FormulaSelection::everything();
    while (!spread_.empty()) {
      const Footprint changed{spread_.back()->node.sheet, spread_.back()->box};
      spread_.pop_back();
      for (FormulaGroup& group : groups_)
        if (!selection_.contains(group.node.sheet, group.node.formula) && reads(group, changed))
          take(group);
    }
    return std::move(selection_);
  }

 private:
  void take(FormulaGroup& group) {
    selection_.add(group.node);
    spread_.push_back(&group);
  }

  bool may_read(const FormulaGroup& group, const PrecedentList& list, const MarkedCells& changed) {
    if (changed.touch({&graph_.sheet(group.node.sheet), group.box})) return true;
    return std::any_of(list.items.begin(), list.items.end(), [&](const Precedent& item) {
      const auto place = footprint(item, group, graph_);
      return !place || changed.touch({&graph_.sheet(place->sheet), place->rect});
    });
  }

  bool reads(const FormulaGroup& group, const Footprint& changed) {
    const PrecedentList& list = graph_.precedents(group.node);
    return std::any_of(list.items.begin(), list.items.end(), [&](const Precedent& item) {
      const auto place = footprint(item, group, graph_);
      return !place || (place->sheet == changed.sheet && place->rect.intersect(changed.rect));
    });
  }

  FormulaGraph& graph_;
  std::vector<FormulaGroup> groups_;
  std::size_t comparisons_ = 0;
  FormulaSelection selection_;
  std::vector<const FormulaGroup*> spread_;  // taken, their readers not looked for yet
};

}  // namespace

std::vector<FormulaGroup> list_groups(const FormulaGraph& graph) {
  std::vector<FormulaGroup> groups;
  for (std::uint32_t number = 0; number < graph.sheet_count(); ++number)
    list_sheet(graph, number, groups);
  std::erase_if(groups, [&](const FormulaGroup& group) {
    return graph.record(group.node).kind == FormulaKind::data_table;
  });
  return groups;
}

std::optional<Footprint> footprint(const Precedent& item, const FormulaGroup& group,
                                   const FormulaGraph& graph) {
  if (item.structured) return std::nullopt;
  // A sheet outside the graph holds nothing that matters.
  constexpr std::uint32_t nowhere = 0xFFFFFFFFu;
  const std::uint32_t sheet =
      item.sheet ? graph.number_of(*item.sheet).value_or(nowhere) : group.node.sheet;
  const bool array = graph.record(group.node).kind == FormulaKind::array;
  const Rect from = array ? Rect::cell(group.node.at) : group.box;
  const formula::AreaRef& area = item.area;
  const bool cell = area.shape == AreaShape::cell;
  const Interval rows =
      enclosing(places(area.first_row, from.first.row, from.last.row),
                places(cell ? area.first_row : area.last_row, from.first.row, from.last.row));
  const Interval columns = enclosing(
      places(area.first_column, from.first.column, from.last.column),
      places(cell ? area.first_column : area.last_column, from.first.column, from.last.column));
  // Distances that lead over the edge of the grid come back on its other side.
  const bool on_grid =
      rows.first >= 1 && rows.last <= max_rows && columns.first >= 1 && columns.last <= max_columns;
  if (!on_grid) return std::nullopt;
  return Footprint{sheet, {{rows.first, columns.first}, {rows.last, columns.last}}};
}

FormulaSelection affected_formulas(FormulaGraph& graph, const MarkedCells& changed) {
  return AffectedSearch(graph, changed).run();
}

}  // namespace qto::embedded
