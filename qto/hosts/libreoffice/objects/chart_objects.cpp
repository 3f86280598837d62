#include "qto/hosts/libreoffice/objects/chart_objects.hpp"

#include <com/sun/star/beans/XPropertySet.hpp>

#include "qto/hosts/libreoffice/document/chart_sheet.hpp"
#include "qto/hosts/libreoffice/objects/chart_series.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

/// A chart that lies on a worksheet. What it shares with sheets it answers for its worksheet; it
/// has no position among the sheets.
class EmbeddedChartObject final : public host::Chart {
 public:
  explicit EmbeddedChartObject(ChartPlace place) : place_(std::move(place)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return place_.exists(); }
  std::string Name() const override { return place_.sheet().name + " " + place_.name(); }
  int Index() const override { fail("A chart on a worksheet has no position among the sheets"); }
  Ref<host::Workbook> Workbook() const override {
    place_.sheet();
    return place_.workbook;
  }
  std::int32_t Visible() const override { return place_.sheet().visibility; }
  void put_Visible(std::int32_t) override {
    fail("A chart on a worksheet is shown and hidden with its sheet");
  }
  void Unprotect(std::string_view password) override { unprotect(place_.sheet(), password); }
  void Select() override { place_.select(); }
  void Activate() override { place_.select(); }
  std::vector<Ref<host::Series>> SeriesCollection() const override { return place_.series(); }
  void SelectChartArea() override { place_.select(); }

 private:
  Ref<host::Application> application() const override { return place_.application(); }

  ChartPlace place_;
};

/// The chart object that holds an embedded chart.
class ChartFrameObject final : public host::ChartObject {
 public:
  explicit ChartFrameObject(ChartPlace place) : place_(std::move(place)) {}

  Ref<host::HostObject> Parent() const override { return place_.owner().handle(place_.sheet()); }
  bool exists() const noexcept override { return place_.exists(); }
  std::string Name() const override { return place_.name(); }
  Ref<host::Chart> Chart() const override {
    place_.sheet();
    return make_ref<EmbeddedChartObject>(place_);
  }
  void Activate() override { place_.select(); }

 private:
  Ref<host::Application> application() const override { return place_.application(); }

  ChartPlace place_;
};

Ref<host::HostObject> EmbeddedChartObject::Parent() const {
  place_.sheet();
  return make_ref<ChartFrameObject>(place_);
}

Ref<host::Chart> chart_at(const ChartPlace& place) {
  if (place.sheet().is_chart) return ref_cast<host::Chart>(place.owner().handle(*place.slot));
  return make_ref<EmbeddedChartObject>(place);
}

}  // namespace

SheetSlot& ChartPlace::sheet() const {
  if (!slot->document) fail_gone();
  return *slot;
}

Ref<host::Application> ChartPlace::application() const {
  sheet();
  return workbook->Application();
}

std::string ChartPlace::name() const {
  return guarded("Reading a chart", [&]() -> std::string {
    const auto shapes = chart_shapes(sheet().sheet);
    if (position >= std::ssize(shapes)) fail_gone();
    OUString name;
    uno::Reference<com::sun::star::beans::XPropertySet>(shapes[position], uno::UNO_QUERY_THROW)
        ->getPropertyValue("Name") >>= name;
    return utf8(name);
  });
}

std::vector<Ref<host::Series>> ChartPlace::series() const { return series_of(*this); }

void ChartPlace::select(int series) const {
  if (!is_active(owner(), sheet())) fail("Sheet " + sheet().name + " is not active");
  OpenBook& book = workbook->book();
  book.chart_sheet = slot;
  book.chart = position;
  book.series = series;
}

Ref<host::Workbook> ChartSheetObject::Workbook() const {
  place_.sheet();
  return place_.workbook;
}

void ChartSheetObject::put_Visible(std::int32_t visibility) {
  put_visibility(place_.owner(), place_.sheet(), visibility);
}

void ChartSheetObject::Unprotect(std::string_view password) { unprotect(place_.sheet(), password); }
void ChartSheetObject::Select() { select_sheet(place_.owner(), place_.sheet()); }
void ChartSheetObject::Activate() { activate_sheet(place_.owner(), place_.sheet()); }

std::vector<Ref<host::ChartObject>> chart_objects(const Ref<WorkbookObject>& workbook,
                                                  SheetSlot& slot) {
  return guarded("Reading the charts", [&] {
    std::vector<Ref<host::ChartObject>> charts;
    const int count = static_cast<int>(chart_shapes(slot.sheet).size());
    for (int i = 0; i < count; ++i)
      charts.push_back(make_ref<ChartFrameObject>(ChartPlace{workbook, Ref<SheetSlot>(&slot), i}));
    return charts;
  });
}

Ref<host::Chart> active_chart(ApplicationObject& application, OpenBook& book) {
  if (book.chart_sheet) return chart_at({application.handle(book), book.chart_sheet, book.chart});
  SheetSlot& active = *book.document.active;
  return active.is_chart ? chart_at({application.handle(book), Ref<SheetSlot>(&active), 0})
                         : nullptr;
}

Ref<host::Series> selected_series(ApplicationObject& application, OpenBook& book) {
  const auto all = ChartPlace{application.handle(book), book.chart_sheet, book.chart}.series();
  return book.series < std::ssize(all) ? all[book.series] : nullptr;
}

}  // namespace qto::libreoffice
