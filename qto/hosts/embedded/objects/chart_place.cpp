#include "qto/hosts/embedded/objects/chart_place.hpp"

#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/series_object.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"

namespace qto::embedded {

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

}  // namespace qto::embedded
