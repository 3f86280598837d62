#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/recalc/open_books.hpp"

namespace qto::embedded {

/// One reference that a formula reads, relative to the formula's cell.
struct Precedent {
  formula::AreaRef area;
  /// Null: the sheet of the formula.
  Sheet* sheet = nullptr;
  /// Stands instead of the area where the row or table depends on the formula's cell.
  const formula::StructuredRef* structured = nullptr;
  /// Only what this and so many following references have in common is read.
  std::uint16_t meets = 0;
  /// Only the cell in the formula's own row or column is read.
  bool implicit = false;
  /// A change there matters, but which part is read turns out in evaluation only, so nothing can
  /// be said about order.
  bool watched_only = false;
  /// It stands where evaluation may not come: in a branch, behind a condition, in a LAMBDA.
  bool conditional = false;

  /// True when evaluation alone tells whether, or how much of it, is read.
  bool depends_on_values() const noexcept { return watched_only || conditional; }
};

struct PrecedentList {
  std::vector<Precedent> items;
  /// The result can change although none of the items does.
  bool is_volatile = false;
  /// It calls a function that nobody knows, or reads from where nothing is remembered: a running
  /// application, a workbook that is neither open nor one of the file's links.
  bool cannot_evaluate = false;
};

/// The references of a formula that stands on `sheet`: through names, spans of sheets and tables,
/// not through what INDIRECT or OFFSET give. References that are looked at but not read, as in
/// ROWS(A1:A9), do not count. Links into other books are followed when `open` has the book.
PrecedentList list_precedents(const Book& book, const Sheet& sheet, const FormulaRecord& record,
                              const OpenBooks* open = nullptr);

/// The block that the item at `index` denotes for a formula in a cell; nothing when it denotes
/// none. Moves `index` past the item and those that it meets.
std::optional<Area> resolve_precedent(std::span<const Precedent> items, std::size_t& index,
                                      Sheet& sheet, CellPos at);

}  // namespace qto::embedded
