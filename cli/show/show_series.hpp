#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/show/picture.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// A chart with one of its series selected.
struct SeriesView {
  struct Series {
    std::string name, formula;
    std::int32_t chart_type = 0;
    bool selected = false;
  };
  struct Point {
    std::string category, value;
    double number = 0;
    bool is_number = false;
  };
  std::vector<Series> series;
  std::vector<Point> points;  ///< of the selected one, the first of them
  std::size_t point_count = 0;
};

/// The chart of a series part.
SeriesView view_of(ModelPart& part);
/// The series of the chart, and bars for the values of the selected one.
std::string drawn(ModelPart& part, const SeriesView& view, const PictureSize& size);

}  // namespace qto::cli
