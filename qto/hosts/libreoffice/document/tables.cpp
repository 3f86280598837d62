#include "qto/hosts/libreoffice/document/tables.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::libreoffice {
namespace {

using formula::StructuredRef;

const TableEntry* find_table(const std::vector<TableEntry>& tables, const StructuredRef& reference,
                             const SheetSlot& sheet, CellPos at) {
  const auto found = std::find_if(tables.begin(), tables.end(), [&](const TableEntry& table) {
    if (!reference.table.empty()) return text::equal_fold(table.name, reference.table);
    return table.sheet == &sheet && table.range.contains(at);
  });
  return found == tables.end() ? nullptr : &*found;
}

std::optional<std::int32_t> column_of(const TableEntry& table, std::string_view name) {
  if (!table.has_header) return std::nullopt;
  for (std::int32_t c = table.range.first.column; c <= table.range.last.column; ++c) {
    const CellRecord* cell = table.sheet->cells().find({table.range.first.row, c});
    if (cell && text::equal_fold(utf8(cell->text), name)) return c;
  }
  return std::nullopt;
}

bool narrow_columns(Rect& block, const TableEntry& table, const StructuredRef& reference) {
  if (reference.first_column.empty()) return true;
  const auto first = column_of(table, reference.first_column);
  const auto last = reference.last_column.empty() ? first : column_of(table, reference.last_column);
  if (!first || !last) return false;
  block.first.column = std::min(*first, *last);
  block.last.column = std::max(*first, *last);
  return true;
}

bool narrow_rows(Rect& block, const TableEntry& table, const StructuredRef& reference, CellPos at) {
  const std::int32_t header = block.first.row;
  const std::int32_t totals = block.last.row;
  const std::int32_t data_first = header + (table.has_header ? 1 : 0);
  const std::int32_t data_last = totals - (table.has_totals ? 1 : 0);
  const std::uint8_t items =
      reference.items == 0 ? std::uint8_t{StructuredRef::data} : reference.items;
  if (items & StructuredRef::this_row) {
    block.first.row = block.last.row = at.row;
    return at.row >= data_first && at.row <= data_last;
  }
  if (items & StructuredRef::all) return true;
  std::int32_t first = max_rows;
  std::int32_t last = 0;
  const auto unite = [&](std::uint8_t item, bool present, std::int32_t from, std::int32_t to) {
    if ((items & item) == 0 || !present) return;
    first = std::min(first, from);
    last = std::max(last, to);
  };
  unite(StructuredRef::headers, table.has_header, header, header);
  unite(StructuredRef::data, data_first <= data_last, data_first, data_last);
  unite(StructuredRef::totals, table.has_totals, totals, totals);
  block.first.row = first;
  block.last.row = last;
  return first <= last;
}

}  // namespace

std::optional<TableTarget> resolve_table(const std::vector<TableEntry>& tables,
                                         const StructuredRef& reference, const SheetSlot& sheet,
                                         CellPos at) {
  const TableEntry* table = find_table(tables, reference, sheet, at);
  if (!table || !table->sheet) return std::nullopt;
  TableTarget target{table->sheet, table->range};
  if (!narrow_rows(target.block, *table, reference, at) ||
      !narrow_columns(target.block, *table, reference))
    return std::nullopt;
  return target;
}

}  // namespace qto::libreoffice
