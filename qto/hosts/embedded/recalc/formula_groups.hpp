#pragma once

#include <unordered_set>
#include <vector>

#include "qto/hosts/embedded/recalc/formula_graph.hpp"
#include "qto/hosts/embedded/recalc/marked_cells.hpp"

namespace qto::embedded {

/// The cells of one sheet that share a formula, or an array formula: what they read is much the
/// same, so much can be told about a graph without looking at each cell.
struct FormulaGroup {
  /// At the first cell for an array formula; for a shared formula its cell does not matter.
  FormulaNode node;
  /// Holds all cells of the group, and maybe others.
  Rect box;
};

/// All groups of a graph; data tables are left out.
std::vector<FormulaGroup> list_groups(const FormulaGraph& graph);

/// A block that holds everything that an item means for any cell of a group.
struct Footprint {
  std::uint32_t sheet;
  Rect rect;
};
/// Nothing where that depends on the cell in other ways than by its distance.
std::optional<Footprint> footprint(const Precedent& item, const FormulaGroup& group,
                                   const FormulaGraph& graph);

/// Some of the formulas of a graph, whole groups of them.
class FormulaSelection {
 public:
  static FormulaSelection everything() { return FormulaSelection(true); }
  FormulaSelection() = default;
  void add(const FormulaNode& node) { keys_.insert(key(node.sheet, node.formula)); }
  bool contains(std::uint32_t sheet, FormulaId formula) const {
    return all_ || keys_.contains(key(sheet, formula));
  }

 private:
  explicit FormulaSelection(bool all) : all_(all) {}
  static std::uint64_t key(std::uint32_t sheet, FormulaId formula) noexcept {
    return std::uint64_t{sheet} << 32 | formula;
  }
  bool all_ = false;
  std::unordered_set<std::uint64_t> keys_;
};

/// The formulas that may depend on the changed cells, and all that change by themselves. Where
/// finding out would cost more than it saves, everything.
FormulaSelection affected_formulas(FormulaGraph& graph, const MarkedCells& changed);

}  // namespace qto::embedded
