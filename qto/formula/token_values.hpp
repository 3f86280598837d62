#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/variant.hpp"

namespace qto::formula {

/// The value of a number token; too large ones are infinite.
double number_value(std::string_view token) noexcept;
/// A text in quotes, or in apostrophes, without them and with doubled ones once.
std::string unquote(std::string_view token);
/// The value of an error token. Kinds that have no number of their own count as #VALUE!.
ErrorValue error_value(std::string_view token) noexcept;
/// TRUE or FALSE in any letter case.
std::optional<bool> boolean_value(std::string_view token) noexcept;

}  // namespace qto::formula
