#pragma once

#include <vector>

#include "qto/hosts/embedded/book/chart.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// The charts that a drawing holds, in its order, under the names of their frames. A chart whose
/// part is missing is left out.
std::vector<ChartModel> read_drawing(Package& package, const Package::Part& part);

}  // namespace qto::embedded
