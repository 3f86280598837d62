#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/book/cell.hpp"

namespace qto::embedded {

class CompiledFormula;  // formulas/: the pieces that its text is rendered from, and its syntax tree

enum class FormulaKind : std::uint8_t {
  normal,      ///< references move with the cell that shows it
  array,       ///< one formula for a block of cells; references stay as in the first cell
  data_table,  ///< a what-if table; its text names the input cells
};

/// One formula of a book. All cells whose formulas are the same relative to their own position
/// share one record, whether the file said so or not.
struct FormulaRecord {
  FormulaKind kind = FormulaKind::normal;
  /// The block that an array formula or data table fills.
  Rect block;
  /// Never null; cut into pieces when the formula came into the book, parsed when first asked for.
  std::shared_ptr<const CompiledFormula> compiled;
};

}  // namespace qto::embedded
