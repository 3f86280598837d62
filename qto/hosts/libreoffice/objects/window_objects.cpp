#include "qto/hosts/libreoffice/objects/window_objects.hpp"

#include <algorithm>

#include "qto/host/range.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

constexpr std::int32_t window_rows = 40;
constexpr std::int32_t window_columns = 20;

Rect visible_block(const SheetSlot& slot) {
  return {slot.scroll,
          {std::min(slot.scroll.row + window_rows - 1, max_rows),
           std::min(slot.scroll.column + window_columns - 1, max_columns)}};
}

std::int32_t scrolled(std::int32_t from, std::int32_t back, std::int32_t end) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(std::int64_t{from} - back, 1, end));
}

}  // namespace

Ref<host::HostObject> WindowObject::Parent() const {
  workbook_->book();
  return workbook_;
}

Ref<host::Pane> WindowObject::ActivePane() const {
  workbook_->book();
  return make_ref<PaneObject>(workbook_);
}

void WindowObject::put_ScrollRow(std::int32_t row) {
  if (row < 1 || row > max_rows) fail("No row " + std::to_string(row));
  slot().scroll.row = row;
}

void WindowObject::put_ScrollColumn(std::int32_t column) {
  if (column < 1 || column > max_columns) fail("No column " + std::to_string(column));
  slot().scroll.column = column;
}

Ref<host::HostObject> PaneObject::Parent() const {
  workbook_->book();
  return make_ref<WindowObject>(workbook_);
}

Ref<host::Range> PaneObject::VisibleRange() const {
  SheetSlot& slot = *workbook_->document().active;
  if (slot.is_chart) fail("The active sheet has no cells");
  return workbook_->owner()->worksheet(slot)->Block(visible_block(slot));
}

void PaneObject::SmallScroll(std::int32_t up, std::int32_t to_left) {
  CellPos& scroll = workbook_->document().active->scroll;
  scroll.row = scrolled(scroll.row, up, max_rows);
  scroll.column = scrolled(scroll.column, to_left, max_columns);
}

void scroll_into_view(SheetSlot& slot, CellPos pos) {
  const Rect visible = visible_block(slot);
  if (pos.row < visible.first.row || pos.row > visible.last.row) slot.scroll.row = pos.row;
  if (pos.column < visible.first.column || pos.column > visible.last.column)
    slot.scroll.column = pos.column;
}

}  // namespace qto::libreoffice
