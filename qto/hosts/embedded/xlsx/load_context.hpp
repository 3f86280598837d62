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
  std::int64_t cell_memory;  ///< bytes that the cells may take
  FormulaIntern formulas;
  std::vector<TextId> strings;
  CachedResults results;
  /// Cells that got the formula of an array or data table so far; see limits.
  std::int64_t array_cells = 0;
  /// Blocks that the cells of earlier sheets take.
  std::int64_t earlier_blocks = 0;

  /// Throws OpenFailure when the cells read so far take too much memory.
  void check_memory(const Sheet& sheet) const;
};

}  // namespace qto::embedded
