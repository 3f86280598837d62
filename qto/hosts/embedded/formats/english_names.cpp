#include "qto/hosts/embedded/formats/english_names.hpp"

#include <array>

#include "qto/automation/text.hpp"

namespace qto::embedded::formats {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

}  // namespace

std::string_view month_name(int month) { return kMonths[static_cast<std::size_t>(month - 1)]; }

std::string_view weekday_name(int weekday) {
  return kWeekdays[static_cast<std::size_t>(weekday - 1)];
}

int month_from_name(std::string_view word) {
  for (std::size_t i = 0; i < kMonths.size(); ++i) {
    if (text::equal_ascii_nocase(word, kMonths[i]) ||
        text::equal_ascii_nocase(word, kMonths[i].substr(0, 3)))
      return static_cast<int>(i) + 1;
  }
  return 0;
}

bool starts_with_ignoring_case(std::string_view whole, std::string_view prefix) {
  return text::equal_ascii_nocase(whole.substr(0, prefix.size()), prefix);
}

}  // namespace qto::embedded::formats
