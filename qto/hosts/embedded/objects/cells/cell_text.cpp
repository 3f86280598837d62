#include "qto/hosts/embedded/objects/cells/cell_text.hpp"

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

}  // namespace qto::embedded
