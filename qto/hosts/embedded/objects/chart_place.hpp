#pragma once

#include <string>
#include <vector>

#include "qto/host/chart.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {

/// Where a chart is: which of the charts of which sheet. Knows when its sheet is gone.
struct ChartPlace {
  Ref<WorkbookObject> workbook;
  Ref<SheetSlot> slot;
  int position = 0;  ///< into Sheet::charts

  bool exists() const noexcept { return slot->sheet != nullptr; }
  /// The following throw when the sheet is gone.
  Sheet& sheet() const;
  OpenBook& open() const;
  /// Null for a chart sheet of which nothing is known.
  const ChartModel* model() const;
  Ref<host::Application> application() const;

  std::vector<Ref<host::Series>> series() const;
  /// Makes the chart, or one of its series (from 0), what is selected. Throws unless the sheet is
  /// the active one.
  void select(int series = -1) const;
};

/// The chart at a place: the chart sheet itself or an embedded one. Throws when it is gone.
Ref<host::Chart> chart_at(const ChartPlace& place);
/// The activated chart of a book, or null.
Ref<host::Chart> active_chart(OpenBook& book);
/// The selected series; only while OpenBook::chart_selection names one.
Ref<host::Series> selected_series(OpenBook& book);

}  // namespace qto::embedded
