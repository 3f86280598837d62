#include "qto/hosts/embedded/objects/window_object.hpp"

#include <algorithm>

#include "qto/host/range.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/sheet_view.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {
namespace {

std::int32_t moved(std::int32_t from, std::int32_t back) {
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(std::int64_t{from} - back, 1, max_rows));
}

}  // namespace

Ref<host::HostObject> WindowObject::Parent() const {
  workbook_->open();
  return workbook_;
}

Ref<host::Pane> WindowObject::ActivePane() const {
  workbook_->open();
  return make_ref<PaneObject>(workbook_);
}

std::int32_t WindowObject::ScrollRow() const { return sheet().scroll.row; }

std::int32_t WindowObject::ScrollColumn() const { return sheet().scroll.column; }

void WindowObject::put_ScrollRow(std::int32_t row) {
  if (row < 1 || row > max_rows) fail("No row " + std::to_string(row));
  scroll_to_row(sheet(), row);
}

void WindowObject::put_ScrollColumn(std::int32_t column) {
  if (column < 1 || column > max_columns) fail("No column " + std::to_string(column));
  scroll_to_column(sheet(), column);
}

Ref<host::HostObject> PaneObject::Parent() const {
  workbook_->open();
  return make_ref<WindowObject>(workbook_);
}

Ref<host::Range> PaneObject::VisibleRange() const {
  OpenBook& book = workbook_->open();
  Sheet& sheet = book.active_sheet();
  if (!sheet.is_worksheet()) fail("The active sheet has no cells");
  return book.worksheet(sheet)->Block(visible_block(book.application(), sheet, book.active_cell()));
}

void PaneObject::SmallScroll(std::int32_t up, std::int32_t to_left) {
  Sheet& sheet = workbook_->open().active_sheet();
  scroll_to_row(sheet, moved(sheet.scroll.row, up));
  scroll_to_column(sheet, moved(sheet.scroll.column, to_left));
}

}  // namespace qto::embedded
