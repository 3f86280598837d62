#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/libreoffice/document/sheet_slot.hpp"

namespace qto::libreoffice {

/// A table of a document: what structured references name.
struct TableEntry {
  std::string name;
  SheetSlot* sheet = nullptr;
  Rect range;
  bool has_header = true;
  bool has_totals = false;
};

/// What a structured reference denotes for a formula in the cell: a block of the table's sheet,
/// nothing when there is no such table, column, part or row.
struct TableTarget {
  SheetSlot* sheet = nullptr;
  Rect block;
};
std::optional<TableTarget> resolve_table(const std::vector<TableEntry>& tables,
                                         const formula::StructuredRef& reference,
                                         const SheetSlot& sheet, CellPos at);

}  // namespace qto::libreoffice
