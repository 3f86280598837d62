#pragma once

#include <vector>

#include "qto/hosts/embedded/recalc/cell_set.hpp"
#include "qto/hosts/embedded/recalc/formula_graph.hpp"

namespace qto::embedded {

/// Some cells of a graph, as those whose values have changed.
class MarkedCells {
 public:
  explicit MarkedCells(const FormulaGraph& graph) : graph_(graph), sheets_(graph.sheet_count()) {}

  /// Blocks on sheets that are not in the graph are left out.
  void add(const Area& area);
  bool touch(const Area& area) const noexcept;
  bool none() const noexcept { return none_; }

 private:
  const FormulaGraph& graph_;
  std::vector<CellSet> sheets_;
  std::vector<Area> large_;  // blocks of too many cells to be kept one by one
  bool none_ = true;
};

}  // namespace qto::embedded
