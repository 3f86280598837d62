#include "qto/hosts/embedded/formats/decimal.hpp"

#include <charconv>

namespace qto::embedded::formats {
namespace {

void strip_trailing_zeros(Decimal& number) {
  while (number.count > 0 && number.digits[static_cast<unsigned>(number.count - 1)] == '0') {
    --number.count;
  }
}

void set_to_power_of_ten(Decimal& number, int exponent) {
  number.digits[0] = '1';
  number.count = 1;
  number.exponent = exponent;
}

}  // namespace

void Decimal::round_to(int decimals) {
  const int keep = exponent + 1 + decimals;
  if (count == 0 || keep >= count) return;
  const bool up = keep >= 0 && digits[static_cast<unsigned>(keep)] >= '5';
  if (keep <= 0) {
    count = 0;
    exponent = 0;
    if (up) set_to_power_of_ten(*this, -decimals);
    return;
  }
  count = keep;
  if (!up) {
    strip_trailing_zeros(*this);
    return;
  }
  while (count > 0 && digits[static_cast<unsigned>(count - 1)] == '9') --count;
  if (count == 0) {
    set_to_power_of_ten(*this, exponent + 1);
  } else {
    ++digits[static_cast<unsigned>(count - 1)];
  }
}

Decimal to_decimal(double magnitude) {
  Decimal number;
  if (magnitude == 0) return number;
  // d.dddddddddddddde[+-]ddd
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), magnitude,
                                 std::chars_format::scientific, Decimal::kDigits - 1)
                       .ptr;
  const char* in = text.data();
  for (; *in != 'e'; ++in) {
    if (*in != '.') number.digits[static_cast<unsigned>(number.count++)] = *in;
  }
  ++in;
  if (*in == '+') ++in;
  std::from_chars(in, end, number.exponent);
  strip_trailing_zeros(number);
  return number;
}

std::int64_t power_of_ten(int power) {
  std::int64_t result = 1;
  for (int i = 0; i < power; ++i) result *= 10;
  return result;
}

}  // namespace qto::embedded::formats
