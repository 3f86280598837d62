#pragma once

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/day_count.hpp"

/// How date functions take their arguments.
namespace qto::embedded::functions {

/// Whether the book counts its days from 1904.
inline bool date1904(Call& call) { return call.context().book().date1904; }
/// The day that an argument denotes; nothing outside the date system.
inline std::optional<Day> day_of(Call& call, int i) {
  return to_day(call.number(i), date1904(call));
}

}  // namespace qto::embedded::functions
