#pragma once

#include <string>
#include <vector>

namespace qto::embedded {

/// A series of a chart with its arguments as the chart stores them: formula texts without "=".
struct ChartSeries {
  std::string name_formula;      ///< reference or quoted text of the series name, "" if none
  std::string name;              ///< the name as shown
  std::string category_formula;  ///< "" if none
  std::string values_formula;    ///< "" if none
  int order = 1;
  int chart_type = 51;  ///< the application's chart type number; 83 to 86 are surface charts
  std::string sizes_formula{};  ///< of bubbles; "" if none
};

struct ChartModel {
  /// Name of the chart object on its sheet; "" for a chart sheet.
  std::string name;
  std::vector<ChartSeries> series;
};

}  // namespace qto::embedded
