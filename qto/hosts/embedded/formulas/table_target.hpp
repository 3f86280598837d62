#pragma once

#include <optional>

#include "qto/automation/address.hpp"
#include "qto/automation/variant.hpp"
#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// The smallest block that holds both.
Rect enclosing(const Rect& a, const Rect& b) noexcept;

/// What a structured reference denotes for a formula in one cell.
struct StructuredTarget {
  const Table* table = nullptr;  ///< null: no such table, or the cell lies in none
  Rect rect;
  /// Set when nothing is denoted: #REF! for an unknown table, column or part, #VALUE! for "this
  /// row" seen from a row outside the table.
  std::optional<ErrorValue> error;
};
StructuredTarget resolve_structured(const formula::StructuredRef& ref, const Book& book,
                                    const Sheet& sheet, CellPos at);

}  // namespace qto::embedded
