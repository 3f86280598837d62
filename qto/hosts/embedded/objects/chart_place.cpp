#include "qto/hosts/embedded/objects/chart_place.hpp"

#include "qto/hosts/embedded/objects/chart_objects.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/series_object.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"

namespace qto::embedded {
namespace {

ChartPlace place_of(OpenBook& book, const Sheet& sheet, int position) {
  return {book.workbook(), Ref<SheetSlot>(&book.slot(sheet)), position};
}

}  // namespace

Sheet& ChartPlace::sheet() const {
  if (!slot->sheet) fail_gone();
  return *slot->sheet;
}

OpenBook& ChartPlace::open() const {
  sheet();
  return *slot->book;
}

const ChartModel* ChartPlace::model() const {
  const auto& charts = sheet().charts;
  return position < std::ssize(charts) ? &charts[position] : nullptr;
}

Ref<host::Application> ChartPlace::application() const {
  sheet();
  return workbook->owner();
}

std::vector<Ref<host::Series>> ChartPlace::series() const {
  std::vector<Ref<host::Series>> list;
  const ChartModel* chart = model();
  const int count = chart ? static_cast<int>(chart->series.size()) : 0;
  for (int i = 0; i < count; ++i) list.push_back(make_ref<SeriesObject>(*this, i));
  return list;
}

void ChartPlace::select(int series) const {
  if (!is_active(open(), sheet())) fail("Sheet " + sheet().name + " is not active");
  open().chart_selection = {&sheet(), position, series};
}

Ref<host::Chart> chart_at(const ChartPlace& place) {
  Sheet& sheet = place.sheet();
  if (!sheet.is_worksheet()) return ref_cast<host::Chart>(place.open().sheet(sheet));
  return make_ref<EmbeddedChartObject>(place);
}

Ref<host::Chart> active_chart(OpenBook& book) {
  const auto& selection = book.chart_selection;
  if (selection.sheet) return chart_at(place_of(book, *selection.sheet, selection.chart));
  Sheet& sheet = book.active_sheet();
  return sheet.is_worksheet() ? nullptr : chart_at(place_of(book, sheet, 0));
}

Ref<host::Series> selected_series(OpenBook& book) {
  const auto& selection = book.chart_selection;
  return make_ref<SeriesObject>(place_of(book, *selection.sheet, selection.chart),
                                selection.series);
}

}  // namespace qto::embedded
