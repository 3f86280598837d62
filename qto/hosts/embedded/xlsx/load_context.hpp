#pragma once

#include <cstdint>
#include <vector>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/formula_intern.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// What the file knew of its formulas' results.
struct CachedResults {
  bool any = false;
  /// Cells with a formula and without a result.
  std::vector<CellAddress> missing;
};

/// What the readers of the parts share while a book is being read.
struct LoadContext {
  Package& package;
  Book& book;
  FormulaIntern formulas;
  std::vector<TextId> strings;
  CachedResults results;
  /// Cells that got the formula of an array or data table so far; see limits.
  std::int64_t array_cells = 0;
  /// Of the sheets read earlier: the cells, and the blocks that they take.
  std::int64_t earlier_cells = 0;
  std::int64_t earlier_blocks = 0;

  const Limits& limits() const noexcept { return package.limits(); }
  /// Throws OpenFailure when there are too many cells or they take too much memory.
  void check_cells(const Sheet& sheet) const;
};

}  // namespace qto::embedded
