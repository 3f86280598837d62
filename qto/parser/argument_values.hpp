#pragma once

#include <cstdint>
#include <string>

#include "qto/automation/variant.hpp"

/// What an argument of a special function evaluates to, converted as automation converts values. A
/// value that cannot be converted raises failure 13 or 6.
namespace qto {

/// TRUE is -1, a date its serial number, nothing 0, a text what it reads as.
double number_behind(const Variant& value);
/// Rounded to the nearest whole number, halves to even.
std::int32_t whole_number_behind(const Variant& value);
/// Any number but 0 is true; a text is TRUE, FALSE or a number.
bool flag_behind(const Variant& value);
/// The shortest text that reads as the value.
std::string text_behind(const Variant& value);

}  // namespace qto
