#pragma once

#include <string>

#include "qto/host/chart.hpp"

namespace qto {

/// "=" and the values argument of a series' SERIES formula; "" for surface charts, and when the
/// formula has no such argument. Commas inside the series name shift the arguments.
std::string series_values_formula(const host::Series& series);

}  // namespace qto
