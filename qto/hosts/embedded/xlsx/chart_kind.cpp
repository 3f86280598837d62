#include "qto/hosts/embedded/xlsx/chart_kind.hpp"

namespace qto::embedded {
namespace {

/// One of three numbers, by how the values of a group are piled.
int by_grouping(const ChartGroup& group, int plain, int stacked, int percent) {
  if (group.grouping == "stacked") return stacked;
  if (group.grouping == "percentStacked") return percent;
  return plain;
}

int shaped_bar_type(const ChartGroup& group) {
  const bool cylinder = group.shape == "cylinder";
  const bool cone = group.shape == "cone" || group.shape == "coneToMax";
  const int first = cylinder ? 92 : cone ? 99 : 106;
  if (group.horizontal) return by_grouping(group, first + 3, first + 4, first + 5);
  if (group.grouping == "standard") return first + 6;
  return by_grouping(group, first, first + 1, first + 2);
}

int bar_type(const ChartGroup& group) {
  if (group.element == "barChart")
    return group.horizontal ? by_grouping(group, 57, 58, 59) : by_grouping(group, 51, 52, 53);
  if (group.shape != "box") return shaped_bar_type(group);
  if (group.horizontal) return by_grouping(group, 60, 61, 62);
  return group.grouping == "standard" ? -4100 : by_grouping(group, 54, 55, 56);
}

int line_type(const ChartGroup& group, const SeriesLook& series) {
  const bool markers = group.markers && !series.no_marker;
  return markers ? by_grouping(group, 65, 66, 67) : by_grouping(group, 4, 63, 64);
}

int scatter_type(const ChartGroup& group, const SeriesLook& series) {
  const bool smooth = series.smooth || group.style.starts_with("smooth");
  const bool markers = !series.no_marker && group.style != "line" && group.style != "smooth";
  if (group.style == "marker") return -4169;
  if (smooth) return markers ? 72 : 73;
  return markers ? 74 : 75;
}

int radar_type(const ChartGroup& group) {
  if (group.style == "filled") return 82;
  return group.style == "marker" ? 81 : -4151;
}

}  // namespace

int chart_type_of(const ChartGroup& group, const SeriesLook& series) {
  const std::string_view element = group.element;
  if (element == "barChart" || element == "bar3DChart") return bar_type(group);
  if (element == "lineChart") return line_type(group, series);
  if (element == "line3DChart") return -4101;
  if (element == "areaChart") return by_grouping(group, 1, 76, 77);
  if (element == "area3DChart") return by_grouping(group, -4098, 78, 79);
  if (element == "pieChart") return series.exploded ? 69 : 5;
  if (element == "pie3DChart") return series.exploded ? 70 : -4102;
  if (element == "ofPieChart") return group.style == "bar" ? 71 : 68;
  if (element == "doughnutChart") return series.exploded ? 80 : -4120;
  if (element == "scatterChart") return scatter_type(group, series);
  if (element == "bubbleChart") return group.bubbles_3d ? 87 : 15;
  if (element == "radarChart") return radar_type(group);
  if (element == "stockChart") return group.series > 3 ? 89 : 88;
  if (element == "surface3DChart") return group.wireframe ? 84 : 83;
  if (element == "surfaceChart") return group.wireframe ? 86 : 85;
  return 51;
}

}  // namespace qto::embedded
