#pragma once

#include <string>

#include "qto/automation/variant.hpp"

/// The two named formats in which the engine writes values that the host shows no text for.
namespace qto {

/// "0.00": two decimals, rounded half away from zero on the decimal value.
std::string format_two_decimals(double value);
/// "Short Date" of the engine's locale (en-US): 3/1/2024.
std::string format_short_date(Date date);
/// Numbers with two decimals, dates as short dates, everything else as its plain text.
std::string format_value(const Variant& value);
/// As format_value for dates and numbers, for a host text that shows hashes only.
std::string format_hidden_number(const Variant& value);

}  // namespace qto
