#include "qto/hosts/embedded/objects/chart_selection.hpp"

#include "qto/hosts/embedded/objects/embedded_chart_object.hpp"
#include "qto/hosts/embedded/objects/series_object.hpp"

namespace qto::embedded {
namespace {

ChartPlace place_of(OpenBook& book, const Sheet& sheet, int position) {
  return {book.workbook(), Ref<SheetSlot>(&book.slot(sheet)), position};
}

}  // namespace

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
