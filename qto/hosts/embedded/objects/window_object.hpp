#pragma once

#include "qto/host/window.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {

/// The window of a book. It shows the active sheet; each sheet keeps its scroll position. Frozen
/// rows and columns do not scroll and are not counted by it.
class WindowObject final : public host::Window {
 public:
  explicit WindowObject(Ref<WorkbookObject> workbook) : workbook_(std::move(workbook)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return workbook_->exists(); }
  Ref<host::Pane> ActivePane() const override;
  std::int32_t ScrollRow() const override;
  std::int32_t ScrollColumn() const override;
  void put_ScrollRow(std::int32_t row) override;
  void put_ScrollColumn(std::int32_t column) override;

 private:
  Ref<host::Application> application() const override { return workbook_->Application(); }
  Sheet& sheet() const { return workbook_->open().active_sheet(); }

  Ref<WorkbookObject> workbook_;
};

/// The active pane of a window: the one that the active cell lies in.
class PaneObject final : public host::Pane {
 public:
  explicit PaneObject(Ref<WorkbookObject> workbook) : workbook_(std::move(workbook)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return workbook_->exists(); }
  Ref<host::Range> VisibleRange() const override;
  /// Scrolls up and to the left; negative numbers scroll the other way. Stops at the grid's edges
  /// and at frozen lines.
  void SmallScroll(std::int32_t up, std::int32_t to_left) override;

 private:
  Ref<host::Application> application() const override { return workbook_->Application(); }

  Ref<WorkbookObject> workbook_;
};

}  // namespace qto::embedded
