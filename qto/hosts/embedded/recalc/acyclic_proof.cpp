#include "qto/hosts/embedded/recalc/acyclic_proof.hpp"

#include <algorithm>
#include <array>

#include "qto/hosts/embedded/recalc/formula_groups.hpp"

namespace qto::embedded {
namespace {

/// Beyond this many pairs looking at the cells is quicker.
constexpr std::size_t most_pairs = 4'000'000;
constexpr int most_rounds = 64;

/// Orders in which the cells of a sheet can be gone through, so that all precedents come first.
enum Order { rows_down, rows_up, columns_right, columns_left, order_count };

struct Range {
  std::int32_t least, most;
};

/// How far an axis lies from the cells of a group.
Range distance(const formula::RefAxis& axis, std::int32_t first, std::int32_t last) noexcept {
  if (!axis.absolute) return {axis.value, axis.value};
  return {axis.value - last, axis.value - first};
}

Range distance(const formula::RefAxis& a, const formula::RefAxis& b, std::int32_t first,
               std::int32_t last) noexcept {
  const Range x = distance(a, first, last);
  const Range y = distance(b, first, last);
  return {std::min(x.least, y.least), std::max(x.most, y.most)};
}

/// True when everything that the item means comes before the cell that reads it.
bool comes_before(Order order, const Precedent& item, const Rect& box) noexcept {
  const formula::AreaRef& area = item.area;
  const bool cell = area.shape == AreaShape::cell;
  const Range rows =
      distance(area.first_row, cell ? area.first_row : area.last_row, box.first.row, box.last.row);
  const Range columns = distance(area.first_column, cell ? area.first_column : area.last_column,
                                 box.first.column, box.last.column);
  const auto less = [](Range major, Range minor) {
    return major.most < 0 || (major.most == 0 && minor.most < 0);
  };
  const auto greater = [](Range major, Range minor) {
    return major.least > 0 || (major.least == 0 && minor.least > 0);
  };
  switch (order) {
    case rows_down:
      return less(rows, columns);
    case rows_up:
      return greater(rows, columns);
    case columns_right:
      return less(columns, rows);
    default:
      return greater(columns, rows);
  }
}

class Proof {
 public:
  explicit Proof(FormulaGraph& graph) : graph_(graph), groups_(list_groups(graph)) {}

  bool holds() {
    if (!list_edges()) return false;
    peel();
    std::vector<std::array<bool, order_count>> possible(graph_.sheet_count());
    for (auto& orders : possible) orders.fill(true);
    for (const Edge& edge : edges_) {
      if (!left_[edge.reader] || !left_[edge.source]) continue;
      const FormulaGroup& reader = groups_[edge.reader];
      const bool array = graph_.record(reader.node).kind == FormulaKind::array;
      if (array || groups_[edge.source].node.sheet != reader.node.sheet) return false;
      auto& orders = possible[reader.node.sheet];
      for (int order = 0; order < order_count; ++order)
        if (!comes_before(static_cast<Order>(order), *edge.item, reader.box)) orders[order] = false;
      if (std::none_of(orders.begin(), orders.end(), [](bool open) { return open; })) return false;
    }
    return true;
  }

 private:
  struct Edge {
    std::size_t reader, source;
    const Precedent* item;
  };

  bool list_edges() {
    std::size_t pairs = 0;
    for (std::size_t reader = 0; reader < groups_.size(); ++reader) {
      const std::vector<Precedent>& items = graph_.precedents(groups_[reader].node).items;
      pairs += items.size() * groups_.size();
      if (pairs > most_pairs) return false;
      for (std::size_t i = 0; i < items.size(); i += 1 + std::size_t{items[i].meets})
        if (!list_sources(reader, items[i])) return false;
    }
    return true;
  }

  bool list_sources(std::size_t reader, const Precedent& item) {
    const auto place = footprint(item, groups_[reader], graph_);
    if (!place) return false;
    for (std::size_t source = 0; source < groups_.size(); ++source)
      if (groups_[source].node.sheet == place->sheet && groups_[source].box.intersect(place->rect))
        edges_.push_back({reader, source, &item});
    return true;
  }

  /// Takes away, again and again, the groups that read none that is left and those that none that
  /// is left reads. Cycles can be among the rest only.
  void peel() {
    left_.assign(groups_.size(), true);
    bool peeled = true;
    for (int round = 0; peeled && round < most_rounds; ++round) {
      std::vector<bool> reads(groups_.size()), is_read(groups_.size());
      for (const Edge& edge : edges_) {
        if (!left_[edge.reader] || !left_[edge.source]) continue;
        reads[edge.reader] = true;
        is_read[edge.source] = true;
      }
      peeled = false;
      for (std::size_t i = 0; i < groups_.size(); ++i)
        if (left_[i] && !(reads[i] && is_read[i])) {
          left_[i] = false;
          peeled = true;
        }
      std::erase_if(
          edges_, [this](const Edge& edge) { return !left_[edge.reader] || !left_[edge.source]; });
    }
  }

  FormulaGraph& graph_;
  std::vector<FormulaGroup> groups_;
  std::vector<Edge> edges_;
  std::vector<bool> left_;
};

}  // namespace

bool proven_acyclic(FormulaGraph& graph) { return Proof(graph).holds(); }

}  // namespace qto::embedded
