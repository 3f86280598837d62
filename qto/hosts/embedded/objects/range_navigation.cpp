#include "qto/hosts/embedded/objects/cells/data_edge.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"

namespace qto::embedded {
namespace {

/// Calls visit(hidden) for each row, or for each column of whole columns, until it answers false.
template <class Visit>
void for_each_line(const SheetLayout& layout, const Rect& block, bool columns, Visit&& visit) {
  if (columns) {
    for (std::int32_t column = block.first.column; column <= block.last.column; ++column)
      if (!visit(layout.column_hidden(column))) return;
    return;
  }
  for (std::int32_t row = block.first.row; row <= block.last.row; ++row)
    if (!visit(layout.row_hidden(row))) return;
}

void need_entire_lines(const std::vector<Rect>& blocks) {
  for (const Rect& block : blocks)
    if (!block.whole_columns() && !block.whole_rows())
      fail("Only entire rows or columns can be hidden");
}

}  // namespace

Ref<host::Range> RangeObject::End(std::int32_t direction) const {
  const auto known = static_cast<EdgeDirection>(direction);
  if (known != edge_right && known != edge_left && known != edge_down && known != edge_up)
    fail("No direction has the number " + std::to_string(direction));
  return at(Rect::cell(data_edge(sheet_->sheet(), block_.first, known)));
}

std::optional<bool> RangeObject::Hidden() const {
  const SheetLayout& layout = sheet_->sheet().layout;
  const std::vector<Rect> all = blocks();
  need_entire_lines(all);
  bool any_hidden = false;
  bool any_shown = false;
  for (const Rect& block : all)
    for_each_line(layout, block, are_columns(block), [&](bool hidden) {
      (hidden ? any_hidden : any_shown) = true;
      return !(any_hidden && any_shown);
    });
  if (any_hidden && any_shown) return std::nullopt;
  return any_hidden;
}

void RangeObject::put_Hidden(bool hidden) {
  Sheet& sheet = sheet_->sheet();
  const std::vector<Rect> all = blocks();
  need_entire_lines(all);
  const SheetProtection& protection = sheet.protection;
  for (const Rect& block : all)
    if (protection.enabled &&
        !(are_columns(block) ? protection.format_columns : protection.format_rows))
      fail("Sheet " + sheet.name + " is protected");
  for (const Rect& block : all)
    if (are_columns(block))
      sheet.layout.hide_columns(block.first.column, block.last.column, hidden);
    else
      sheet.layout.hide_rows(block.first.row, block.last.row, hidden);
}

void RangeObject::Select() {
  OpenBook& book = sheet_->open();
  Sheet& sheet = sheet_->sheet();
  if (!is_active(book, sheet)) fail("Sheet " + sheet.name + " is not active");
  sheet.selection = block_;
  book.slot(sheet).more_selected = more_ ? *more_ : std::vector<Rect>{};
  book.chart_selection = {};
}

}  // namespace qto::embedded
