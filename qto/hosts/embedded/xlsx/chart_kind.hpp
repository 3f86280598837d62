#pragma once

#include <string>
#include <string_view>

namespace qto::embedded {

/// What a chart part says about a group of series that are drawn the same way.
struct ChartGroup {
  std::string element{};      ///< "barChart", "surface3DChart", ...
  std::string grouping{};     ///< "standard", "clustered", "stacked", "percentStacked"
  std::string style{};        ///< scatterStyle, radarStyle or ofPieType
  std::string shape = "box";  ///< of three-dimensional bars
  bool horizontal = false;    ///< bars instead of columns
  bool wireframe = false;
  bool bubbles_3d = false;
  bool markers = false;
  int series = 0;
};

/// What a series of its own adds.
struct SeriesLook {
  bool no_marker = false;
  bool smooth = false;
  bool exploded = false;
};

/// The application's number for the chart type of a series.
int chart_type_of(const ChartGroup& group, const SeriesLook& series);

}  // namespace qto::embedded
