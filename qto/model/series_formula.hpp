#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qto/host/chart.hpp"

namespace qto {

/// The arguments of =SERIES(…) as written, views into `formula`; empty for a text of another form.
/// Commas in quoted names and texts, in unions and in arrays do not separate.
std::vector<std::string_view> series_arguments(std::string_view formula);

/// "=" and the values argument of the series' formula; "" when it has none, or for a surface chart.
/// Host failures pass through.
std::string series_values_formula(const host::Series& series);

}  // namespace qto
