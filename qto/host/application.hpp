#pragma once

#include <string>
#include <string_view>

#include "qto/host/constants.hpp"
#include "qto/host/host_object.hpp"

namespace qto::host {

class Chart;
class DefinedName;
class Range;
class Sheet;
class Window;
class Workbook;
class Workbooks;
class WorksheetFunction;

/// The running spreadsheet application.
class Application : public HostObject {
 public:
  std::string_view TypeName() const noexcept final { return "Application"; }

  virtual Ref<host::Workbooks> Workbooks() = 0;
  /// Null when no workbook is open.
  virtual Ref<Workbook> ActiveWorkbook() = 0;
  virtual Ref<Sheet> ActiveSheet() = 0;
  /// The selected range, series or whole embedded chart; null when nothing is.
  virtual Ref<Object> Selection() = 0;
  virtual Ref<Window> ActiveWindow() = 0;
  virtual Ref<Chart> ActiveChart() = 0;
  virtual std::string Caption() = 0;
  /// xlA1; anything else is treated as R1C1.
  virtual std::int32_t ReferenceStyle() = 0;
  virtual bool ScreenUpdating() = 0;
  virtual void put_ScreenUpdating(bool on) = 0;
  virtual bool EnableEvents() = 0;
  virtual void put_EnableEvents(bool on) = 0;
  virtual bool DisplayAlerts() = 0;
  virtual void put_DisplayAlerts(bool on) = 0;

  /// Activates the range's sheet and selects it; with scrolling its first cell comes to the top
  /// left of the window.
  virtual void Goto(const Ref<Range>& reference, bool scroll) = 0;
  /// The common cells, or null.
  virtual Ref<Range> Intersect(const Ref<Range>& a, const Ref<Range>& b) = 0;
  /// Relative references count from the first cell of `relative_to`; null: from the active cell.
  virtual std::string ConvertFormula(std::string_view formula, std::int32_t from_style,
                                     std::int32_t to_style,
                                     const Ref<Range>& relative_to = nullptr) = 0;
  virtual Ref<host::WorksheetFunction> WorksheetFunction() = 0;
  /// Probe: a name of the active workbook, as a formula on the active sheet sees it.
  virtual Ref<DefinedName> find_name(std::string_view name) = 0;
  /// Ordinary form of find_name.
  virtual Ref<DefinedName> Names(std::string_view name) = 0;
  /// Brings the main window to the front; hosts without windows do nothing.
  virtual void bring_to_front() {}
  /// Lets the host work off what waits in its message queue.
  virtual void yield() {}
};

}  // namespace qto::host
