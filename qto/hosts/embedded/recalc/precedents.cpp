#include "qto/hosts/embedded/recalc/precedents.hpp"

#include "qto/hosts/embedded/formulas/table_target.hpp"
#include "qto/hosts/embedded/recalc/precedent_walk.hpp"

namespace qto::embedded {
namespace {

std::optional<Area> resolve_one(const Precedent& item, Sheet& sheet, CellPos at) {
  if (!item.structured) return Area{item.sheet ? item.sheet : &sheet, item.area.resolve(at)};
  const Book& book = sheet.book();
  const StructuredTarget target = resolve_structured(*item.structured, book, sheet, at);
  if (target.error) return std::nullopt;
  Sheet* owner =
      target.table->sheet == &sheet ? &sheet : book.find_sheet(target.table->sheet->name);
  if (!owner) return std::nullopt;
  return Area{owner, target.rect};
}

/// The cell of a row or column that lies in the formula's own column or row.
std::optional<Rect> own_part(const Rect& rect, CellPos at) {
  if (rect.is_cell()) return rect;
  if (rect.columns() == 1 && at.row >= rect.first.row && at.row <= rect.last.row)
    return Rect::cell({at.row, rect.first.column});
  if (rect.rows() == 1 && at.column >= rect.first.column && at.column <= rect.last.column)
    return Rect::cell({rect.first.row, at.column});
  return std::nullopt;
}

}  // namespace

PrecedentList list_precedents(const Book& book, const Sheet& sheet, const FormulaRecord& record,
                              const OpenBooks* open) {
  return PrecedentWalk(book, sheet, open).run(record);
}

std::optional<Area> resolve_precedent(std::span<const Precedent> items, std::size_t& index,
                                      Sheet& sheet, CellPos at) {
  const Precedent& item = items[index];
  std::optional<Area> area = resolve_one(item, sheet, at);
  for (std::size_t i = index + 1; i <= index + item.meets && area; ++i) {
    const std::optional<Area> other = resolve_one(items[i], sheet, at);
    const auto common =
        other && other->sheet == area->sheet ? area->rect.intersect(other->rect) : std::nullopt;
    if (common)
      area->rect = *common;
    else
      area.reset();
  }
  index += 1 + std::size_t{item.meets};
  if (!area || !item.implicit) return area;
  const std::optional<Rect> own = own_part(area->rect, at);
  if (!own) return std::nullopt;
  return Area{area->sheet, *own};
}

}  // namespace qto::embedded
