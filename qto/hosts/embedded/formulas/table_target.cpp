#include "qto/hosts/embedded/formulas/table_target.hpp"

#include <algorithm>

namespace qto::embedded {
namespace {

void unite_rows(std::optional<Rect>& rows, const std::optional<Rect>& more) {
  if (more) rows = rows ? enclosing(*rows, *more) : *more;
}

std::optional<Rect> rows_of(const Table& table, std::uint8_t items) {
  if (items & formula::StructuredRef::all) return table.range;
  std::optional<Rect> rows;
  if (items == 0 || (items & formula::StructuredRef::data)) unite_rows(rows, table.data());
  if (items & formula::StructuredRef::headers) unite_rows(rows, table.headers());
  if (items & formula::StructuredRef::totals) unite_rows(rows, table.totals());
  return rows;
}

bool narrow_columns(Rect& rect, const Table& table, const formula::StructuredRef& ref) {
  if (ref.first_column.empty()) return true;
  const std::optional<int> first = table.find_column(ref.first_column);
  const std::optional<int> last =
      ref.last_column.empty() ? first : table.find_column(ref.last_column);
  if (!first || !last) return false;
  const std::int32_t left = table.range.first.column;
  rect.first.column = left + std::min(*first, *last);
  rect.last.column = left + std::max(*first, *last);
  return true;
}

}  // namespace

Rect enclosing(const Rect& a, const Rect& b) noexcept {
  return {{std::min(a.first.row, b.first.row), std::min(a.first.column, b.first.column)},
          {std::max(a.last.row, b.last.row), std::max(a.last.column, b.last.column)}};
}

StructuredTarget resolve_structured(const formula::StructuredRef& ref, const Book& book,
                                    const Sheet& sheet, CellPos at) {
  StructuredTarget target;
  target.table = ref.table.empty() ? book.table_at(sheet, at) : book.find_table(ref.table);
  target.error = ErrorValue::ref;
  if (!target.table) return target;
  const Table& table = *target.table;
  std::optional<Rect> rows;
  if (ref.items & formula::StructuredRef::this_row) {
    rows = table.data();
    if (!rows || at.row < rows->first.row || at.row > rows->last.row) {
      target.error = ErrorValue::value;
      return target;
    }
    rows->first.row = rows->last.row = at.row;
  } else {
    rows = rows_of(table, ref.items);
  }
  if (!rows || !narrow_columns(*rows, table, ref)) return target;
  target.rect = *rows;
  target.error.reset();
  return target;
}

}  // namespace qto::embedded
