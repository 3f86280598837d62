#pragma once

#include <com/sun/star/chart2/XDataSeries.hpp>
#include <string>
#include <vector>

#include "qto/host/chart.hpp"
#include "qto/hosts/libreoffice/objects/workbook_object.hpp"

namespace qto::libreoffice {

/// Where a chart is: which of the charts of which sheet.
struct ChartPlace {
  Ref<WorkbookObject> workbook;
  Ref<SheetSlot> slot;
  int position = 0;

  bool exists() const noexcept { return slot->document != nullptr; }
  /// The following throw when the sheet is gone.
  SheetSlot& sheet() const;
  ApplicationObject& owner() const noexcept { return *workbook->owner(); }
  Ref<host::Application> application() const;
  /// The name of the chart's shape: "Chart 1".
  std::string name() const;
  std::vector<Ref<host::Series>> series() const;
  /// Makes the chart, or one of its series (from 0), what is selected. Throws unless the sheet is
  /// the active one.
  void select(int series = -1) const;
};

/// The handle of a chart sheet; there is one per sheet while somebody holds it.
class ChartSheetObject final : public host::Chart {
 public:
  ChartSheetObject(Ref<WorkbookObject> workbook, SheetSlot& slot)
      : place_{std::move(workbook), Ref<SheetSlot>(&slot), 0} {}
  ~ChartSheetObject() override { place_.slot->handle = nullptr; }

  Ref<host::HostObject> Parent() const override { return Workbook(); }
  bool exists() const noexcept override { return place_.exists(); }
  std::string Name() const override { return place_.sheet().name; }
  int Index() const override { return place_.sheet().position + 1; }
  Ref<host::Workbook> Workbook() const override;
  std::int32_t Visible() const override { return place_.sheet().visibility; }
  void put_Visible(std::int32_t visibility) override;
  void Unprotect(std::string_view password) override;
  void Select() override;
  void Activate() override;
  std::vector<Ref<host::Series>> SeriesCollection() const override { return place_.series(); }
  void SelectChartArea() override { place_.select(); }

 private:
  Ref<host::Application> application() const override { return place_.application(); }

  ChartPlace place_;
};

/// The charts that lie on a worksheet.
std::vector<Ref<host::ChartObject>> chart_objects(const Ref<WorkbookObject>& workbook,
                                                  SheetSlot& slot);
/// The activated chart of a book, or null.
Ref<host::Chart> active_chart(ApplicationObject& application, OpenBook& book);
/// The selected series; only while the book has one.
Ref<host::Series> selected_series(ApplicationObject& application, OpenBook& book);

}  // namespace qto::libreoffice
