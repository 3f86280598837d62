#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qto::embedded::formats {

/// A number read from text. Dates and times are serials of the date system that was asked for.
struct ParsedNumber {
  enum class Kind : std::uint8_t {
    number,
    percent,
    currency,
    scientific,
    date,
    time,
    date_time,
    fraction
  };

  double value = 0;
  Kind kind = Kind::number;
};

/// Reads a text as a user would type a number, date or time under en-US settings, whatever the
/// locale of the process. Dates without a year are in `current_year`. Nothing for any other text.
std::optional<ParsedNumber> parse_number(std::string_view text, bool date1904, int current_year);

}  // namespace qto::embedded::formats
