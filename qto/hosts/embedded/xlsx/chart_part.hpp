#pragma once

#include <vector>

#include "qto/hosts/embedded/book/chart.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// The series of a chart part: group by group as they are drawn, by plot order inside a group.
std::vector<ChartSeries> read_chart(Package& package, const Package::Part& part);

}  // namespace qto::embedded
