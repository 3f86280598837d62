#include "qto/hosts/embedded/formats/general_text.hpp"

#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/formats/decimal.hpp"
#include "qto/hosts/embedded/formats/number_format.hpp"

namespace qto::embedded::formats {
namespace {

// Below 0.0001 a number that has to be rounded turns scientific.
constexpr int kLeastPlainExponent = -4;

void append_plain(const Decimal& number, std::string& out) {
  if (number.integer_length() == 0) out += '0';
  for (int power = number.integer_length() - 1; power >= 0; --power) out += number.digit(power);
  const int decimals = number.fraction_length();
  if (decimals > 0) out += '.';
  for (int place = 1; place <= decimals; ++place) out += number.digit(-place);
}

int plain_length(const Decimal& number) {
  const int decimals = number.fraction_length();
  return std::max(1, number.integer_length()) + (decimals > 0 ? decimals + 1 : 0);
}

int exponent_length(int exponent) { return exponent <= -100 || exponent >= 100 ? 5 : 4; }

void append_scientific(const Decimal& number, std::string& out) {
  out += number.digits[0];
  if (number.count > 1) {
    out += '.';
    out.append(number.digits.data() + 1, static_cast<std::size_t>(number.count - 1));
  }
  out += number.exponent < 0 ? "E-" : "E+";
  const int exponent = std::abs(number.exponent);
  if (exponent < 10) out += '0';
  out += std::to_string(exponent);
}

bool append_scientific_within(Decimal number, int width, std::string& out) {
  // Rounding up to the next power of ten may lengthen the exponent: the second pass sees that.
  for (int pass = 0; pass < 2; ++pass) {
    const int room = width - exponent_length(number.exponent);
    if (room < 1) return false;
    const int significant = std::max(1, room - 1);
    number.round_to(significant - 1 - number.exponent);
  }
  // Rounded, a number may be short enough to do without: 9.9999999E-05 is 0.0001.
  if (plain_length(number) <= width) {
    append_plain(number, out);
  } else {
    append_scientific(number, out);
  }
  return true;
}

bool append_plain_within(Decimal number, int width, std::string& out) {
  number.round_to(std::max(0, width - std::max(1, number.integer_length()) - 1));
  if (plain_length(number) > width) return false;
  append_plain(number, out);
  return true;
}

}  // namespace

bool append_general(double magnitude, int width, std::string& out) {
  const Decimal number = to_decimal(magnitude);
  width = std::min(width, kGeneralWidth);
  if (width < 1) return false;
  if (plain_length(number) <= width) {
    append_plain(number, out);
    return true;
  }
  if (number.exponent >= 0) {
    return append_plain_within(number, width, out) || append_scientific_within(number, width, out);
  }
  const bool shows_a_digit = width - 2 >= -number.exponent;
  if (number.exponent >= kLeastPlainExponent && shows_a_digit) {
    return append_plain_within(number, width, out);
  }
  return append_scientific_within(number, width, out) || append_plain_within(number, width, out);
}

std::string general_text(double value) {
  if (!std::isfinite(value)) return "#NUM!";
  const Decimal number = to_decimal(std::abs(value));
  std::string out;
  if (value < 0) out += '-';
  const bool plain = number.exponent >= kLeastPlainExponent ? number.exponent < Decimal::kDigits
                                                            : plain_length(number) <= kGeneralWidth;
  if (plain) {
    append_plain(number, out);
  } else {
    append_scientific(number, out);
  }
  return out;
}

}  // namespace qto::embedded::formats
