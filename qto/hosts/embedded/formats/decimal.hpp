#pragma once

#include <array>
#include <cstdint>

namespace qto::embedded::formats {

/// A non-negative number as people see it: at most 15 significant decimal digits. Rounding happens
/// on these digits, so that 1.005 with two decimals is 1.01 although the double lies below it.
struct Decimal {
  static constexpr int kDigits = 15;

  std::array<char, kDigits + 1> digits{};  ///< '0'..'9', no leading and no trailing zeros
  int count = 0;                           ///< digits in use, 0 for the number zero
  int exponent = 0;                        ///< power of ten of the first digit, 0 for zero

  bool is_zero() const { return count == 0; }

  /// Digits before the decimal point, 0 when the number is below one.
  int integer_length() const { return count == 0 || exponent < 0 ? 0 : exponent + 1; }

  /// Digits after the decimal point without trailing zeros.
  int fraction_length() const { return count - 1 - exponent > 0 ? count - 1 - exponent : 0; }

  /// The digit that stands for 10^power, '0' outside the stored digits.
  char digit(int power) const {
    const int index = exponent - power;
    return index < 0 || index >= count ? '0' : digits[static_cast<unsigned>(index)];
  }

  /// Multiplies by 10^power.
  void shift(int power) {
    if (count != 0) exponent += power;
  }

  /// Rounds half away from zero to `decimals` places; negative places round tens, hundreds, ...
  void round_to(int decimals);
};

/// 10^power for a power from 0 to 18.
std::int64_t power_of_ten(int power);

/// The digits of a finite `magnitude` >= 0.
Decimal to_decimal(double magnitude);

}  // namespace qto::embedded::formats
