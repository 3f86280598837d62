#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>

#include "qto/hosts/libreoffice/objects/range_object.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

CellPos moved(CellPos pos, bool down) {
  ++(down ? pos.row : pos.column);
  return pos;
}

/// The next cell with content from `pos` on; off the grid when there is none.
CellPos next_filled(const Cells& cells, CellPos pos, bool down) {
  const std::int32_t end = down ? cells.used().last.row : cells.used().last.column;
  while ((down ? pos.row : pos.column) <= end) {
    if (cells.find(pos)) return pos;
    pos = moved(pos, down);
  }
  return down ? CellPos{max_rows + 1, pos.column} : CellPos{pos.row, max_columns + 1};
}

bool line_hidden(const SheetSlot& slot, std::int32_t line, bool column) {
  const auto own = (column ? slot.columns : slot.rows).hidden(line);
  if (own) return *own;
  return guarded("Reading whether a line is hidden", [&] {
    const uno::Reference<com::sun::star::table::XColumnRowRange> lines(slot.sheet,
                                                                       uno::UNO_QUERY_THROW);
    uno::Reference<com::sun::star::container::XIndexAccess> list;
    if (column)
      list.set(lines->getColumns(), uno::UNO_QUERY_THROW);
    else
      list.set(lines->getRows(), uno::UNO_QUERY_THROW);
    bool visible = true;
    uno::Reference<com::sun::star::beans::XPropertySet>(list->getByIndex(line - 1),
                                                        uno::UNO_QUERY_THROW)
        ->getPropertyValue("IsVisible") >>= visible;
    return !visible;
  });
}

void need_entire_lines(const std::vector<Rect>& blocks) {
  for (const Rect& block : blocks)
    if (!block.whole_columns() && !block.whole_rows())
      fail("Only entire rows or columns can be hidden");
}

}  // namespace

Ref<host::Range> RangeObject::EntireRow() const {
  std::vector<Rect> rows = blocks();
  for (Rect& block : rows) {
    block.first.column = 1;
    block.last.column = max_columns;
  }
  sheet_->slot();
  return make_ref<RangeObject>(sheet_, rows, true);
}

Ref<host::Range> RangeObject::EntireColumn() const {
  std::vector<Rect> columns = blocks();
  for (Rect& block : columns) {
    block.first.row = 1;
    block.last.row = max_rows;
  }
  sheet_->slot();
  return make_ref<RangeObject>(sheet_, columns);
}

Ref<host::Range> RangeObject::End(std::int32_t direction) const {
  if (direction != host::xlDown && direction != host::xlToRight)
    fail("LibreOffice's host goes down and to the right only, not in the direction " +
         std::to_string(direction));
  const bool down = direction == host::xlDown;
  const libreoffice::Cells& cells = sheet_->slot().cells();
  CellPos pos = block_.first;
  const CellPos next = moved(pos, down);
  if (!next.on_grid()) return at(Rect::cell(pos));
  if (cells.find(pos) && cells.find(next)) {
    while (moved(pos, down).on_grid() && cells.find(moved(pos, down))) pos = moved(pos, down);
    return at(Rect::cell(pos));
  }
  const CellPos filled = next_filled(cells, next, down);
  if (filled.on_grid()) return at(Rect::cell(filled));
  return at(Rect::cell(down ? CellPos{max_rows, pos.column} : CellPos{pos.row, max_columns}));
}

std::optional<bool> RangeObject::Hidden() const {
  const SheetSlot& slot = sheet_->slot();
  need_entire_lines(blocks());
  bool any_hidden = false;
  bool any_shown = false;
  for (const Rect& block : blocks()) {
    const bool column = are_columns(block);
    const std::int32_t last = column ? block.last.column : block.last.row;
    for (std::int32_t line = column ? block.first.column : block.first.row; line <= last; ++line) {
      (line_hidden(slot, line, column) ? any_hidden : any_shown) = true;
      if (any_hidden && any_shown) return std::nullopt;
    }
  }
  return any_hidden;
}

void RangeObject::put_Hidden(bool hidden) {
  SheetSlot& slot = sheet_->slot();
  need_entire_lines(blocks());
  if (uno::Reference<com::sun::star::util::XProtectable>(slot.sheet, uno::UNO_QUERY_THROW)
          ->isProtected())
    fail("Sheet " + slot.name + " is protected");
  for (const Rect& block : blocks())
    if (are_columns(block))
      slot.columns.put(block.first.column, block.last.column, hidden);
    else
      slot.rows.put(block.first.row, block.last.row, hidden);
}

void RangeObject::Select() {
  SheetSlot& slot = sheet_->slot();
  if (!is_active(sheet_->owner(), slot)) fail("Sheet " + slot.name + " is not active");
  slot.selection = block_;
  slot.more_selected = more_;
  sheet_->workbook()->book().chart_sheet = nullptr;
}

}  // namespace qto::libreoffice
