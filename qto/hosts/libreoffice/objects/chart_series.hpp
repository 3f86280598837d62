#pragma once

#include "qto/hosts/libreoffice/objects/chart_objects.hpp"

namespace qto::libreoffice {

/// The series of a chart, in the order in which they are drawn.
std::vector<Ref<host::Series>> series_of(const ChartPlace& place);

}  // namespace qto::libreoffice
