#include <algorithm>
#include <cmath>
#include <utility>

#include "qto/hosts/embedded/formats/general_text.hpp"
#include "qto/hosts/embedded/formats/number_format.hpp"

namespace qto::embedded::formats {
namespace {

constexpr int kWidestColumn = 255;

int whole_characters(double column_width) {
  if (!(column_width >= 1)) return 1;
  return column_width >= kWidestColumn ? kWidestColumn : static_cast<int>(column_width);
}

std::size_t code_points(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) >> 6) != 2; }));
}

bool append_fitting_general(double value, int width, std::string& out) {
  if (!std::isfinite(value)) return false;
  std::string digits;
  if (!append_general(std::abs(value), value < 0 ? width - 1 : width, digits)) return false;
  if (value < 0 && digits != "0") out += '-';
  out += digits;
  return true;
}

}  // namespace

std::string cell_text(const NumberFormat& format, double value, bool date1904,
                      double column_width_chars) {
  const int width = whole_characters(column_width_chars);
  std::string full(static_cast<std::size_t>(width), '#');
  if (format.is_general() || format.is_text()) {
    std::string text;
    return append_fitting_general(value, width, text) ? std::move(text) : std::move(full);
  }
  auto text = format.try_format(value, date1904);
  const bool fits = text && code_points(*text) <= static_cast<std::size_t>(width);
  return fits ? std::move(*text) : std::move(full);
}

}  // namespace qto::embedded::formats
