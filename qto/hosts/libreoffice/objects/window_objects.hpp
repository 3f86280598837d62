#pragma once

#include "qto/host/window.hpp"
#include "qto/hosts/libreoffice/objects/workbook_object.hpp"

namespace qto::libreoffice {

/// The window of a book as somebody would see it: it shows the active sheet, 40 rows by 20 columns,
/// from the scroll position on. The suite itself runs without windows.
class WindowObject final : public host::Window {
 public:
  explicit WindowObject(Ref<WorkbookObject> workbook) : workbook_(std::move(workbook)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return workbook_->exists(); }
  Ref<host::Pane> ActivePane() const override;
  std::int32_t ScrollRow() const override { return slot().scroll.row; }
  std::int32_t ScrollColumn() const override { return slot().scroll.column; }
  void put_ScrollRow(std::int32_t row) override;
  void put_ScrollColumn(std::int32_t column) override;

 private:
  Ref<host::Application> application() const override { return workbook_->Application(); }
  SheetSlot& slot() const { return *workbook_->document().active; }

  Ref<WorkbookObject> workbook_;
};

class PaneObject final : public host::Pane {
 public:
  explicit PaneObject(Ref<WorkbookObject> workbook) : workbook_(std::move(workbook)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return workbook_->exists(); }
  Ref<host::Range> VisibleRange() const override;
  /// Scrolls up and to the left; negative numbers scroll the other way. Stops at the grid's edges.
  void SmallScroll(std::int32_t up, std::int32_t to_left) override;

 private:
  Ref<host::Application> application() const override { return workbook_->Application(); }

  Ref<WorkbookObject> workbook_;
};

/// Scrolls just as far as needed for the cell to show.
void scroll_into_view(SheetSlot& slot, CellPos pos);

}  // namespace qto::libreoffice
