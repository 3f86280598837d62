#pragma once

#include <optional>
#include <string_view>

#include "qto/hosts/embedded/formats/parse_number.hpp"

namespace qto::embedded::formats {

/// Reads a date, a time, or a date followed by a time; no spaces around it.
std::optional<ParsedNumber> parse_date_time(std::string_view text, bool date1904, int current_year);

}  // namespace qto::embedded::formats
