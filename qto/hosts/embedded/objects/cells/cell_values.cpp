#include "qto/hosts/embedded/objects/cells/cell_values.hpp"

#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {
namespace {

double shown_width(const Sheet& sheet, CellPos pos) {
  for (const Rect& merged : sheet.merges) {
    if (merged.first != pos) continue;
    double width = 0;
    for (std::int32_t column = merged.first.column; column <= merged.last.column; ++column)
      width += sheet.layout.column_width(column);
    return width;
  }
  return sheet.layout.column_width(pos.column);
}

}  // namespace

std::string shown_text(const Book& book, const Sheet& sheet, CellPos pos) {
  const Cell* cell = sheet.cells.find(pos);
  if (!cell) return {};
  const formats::NumberFormat& format = *book.styles.at(cell->style()).format;
  switch (cell->type()) {
    case CellType::empty:
      return {};
    case CellType::number:
      return formats::cell_text(format, cell->number(), book.date1904, shown_width(sheet, pos));
    case CellType::text:
      return format.format_text(book.texts.view(cell->text()));
    case CellType::boolean:
      return cell->boolean() ? "TRUE" : "FALSE";
    case CellType::error:
      return std::string(error_text(cell->error()));
  }
  return {};
}

Variant values_of_block(const Book& book, const Sheet& sheet, const Rect& block) {
  constexpr std::int64_t most_values = std::int64_t{1} << 26;
  if (block.is_cell()) {
    const Cell* cell = sheet.cells.find(block.first);
    return cell ? book.value_of(*cell) : Variant{};
  }
  if (block.cells() > most_values) fail("The block has too many cells to read at once");
  const auto values = make_ref<VariantArray>(block.rows(), block.columns());
  sheet.cells.for_each(block, [&](CellPos pos, const Cell& cell, FormulaId) {
    values->at(pos.row - block.first.row + 1, pos.column - block.first.column + 1) =
        book.value_of(cell);
  });
  return Variant(Ref<const VariantArray>(values));
}

}  // namespace qto::embedded
