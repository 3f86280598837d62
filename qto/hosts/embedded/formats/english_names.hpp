#pragma once

#include <string_view>

namespace qto::embedded::formats {

/// "January" for 1 to "December" for 12.
std::string_view month_name(int month);

/// "Sunday" for 1 to "Saturday" for 7.
std::string_view weekday_name(int weekday);

/// The month whose full name or first three letters `word` is, letter case ignored; 0 for none.
int month_from_name(std::string_view word);

/// True when `whole` starts with `prefix`, the case of ASCII letters ignored.
bool starts_with_ignoring_case(std::string_view whole, std::string_view prefix);

}  // namespace qto::embedded::formats
