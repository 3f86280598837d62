#include "qto/hosts/embedded/book/table.hpp"

#include "qto/automation/text.hpp"

namespace qto::embedded {
namespace {
std::optional<Rect> rows_of(const Rect& range, int first, int last) noexcept {
  if (first > last) return std::nullopt;
  return Rect{{first, range.first.column}, {last, range.last.column}};
}
}  // namespace

std::optional<int> Table::find_column(std::string_view column) const {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (text::equal_fold(columns[i], column)) return static_cast<int>(i);
  return std::nullopt;
}

std::optional<Rect> Table::data() const noexcept {
  return rows_of(range, range.first.row + header_rows, range.last.row - totals_rows);
}

std::optional<Rect> Table::headers() const noexcept {
  return rows_of(range, range.first.row, range.first.row + header_rows - 1);
}

std::optional<Rect> Table::totals() const noexcept {
  return rows_of(range, range.last.row - totals_rows + 1, range.last.row);
}

}  // namespace qto::embedded
