#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formula/syntax_tree.hpp"

namespace qto::embedded {

/// Reads a structured reference: Sales[Amount], Sales[[#Headers],[A]:[B]], [@Price], Sales[].
/// Nothing when the brackets do not hold one.
std::optional<StructuredRef> parse_structured(std::string_view token);

/// What a structured reference denotes for a formula in one cell.
struct StructuredTarget {
  const Table* table = nullptr;  ///< null: no such table, or the cell lies in none
  Rect rect;
  /// Set when nothing is denoted: #REF! for an unknown table, column or part, #VALUE! for "this
  /// row" seen from a row outside the table.
  std::optional<ErrorValue> error;
};
StructuredTarget resolve_structured(const StructuredRef& ref, const Book& book, const Sheet& sheet,
                                    CellPos at);

}  // namespace qto::embedded
