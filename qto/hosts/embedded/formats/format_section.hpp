#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qto::embedded::formats {

enum class TokenKind : std::uint8_t {
  literal,
  general,  // the number as General shows it
  text,     // the text value
  // Digit placeholders; `symbol` is '0', '#' or '?'.
  digit,  // before its place in the number is known
  integer_digit,
  decimal_digit,
  exponent_digit,
  numerator_digit,
  denominator_digit,
  point,
  comma,
  slash,
  fixed_denominator,
  exponent,  // `symbol` is 'E' or 'e', `count` 1 when a plus sign is shown
  percent,
  // Dates and times; `count` is the length of the run of letters.
  year,
  buddhist_year,
  era,
  month,
  day,
  weekday,
  hour,
  minute,
  second,
  second_fraction,
  am_pm,  // `symbol` is 'A' or 'a' for the one-letter form in that case, 0 for AM/PM
  elapsed_hours,
  elapsed_minutes,
  elapsed_seconds,
};

struct Token {
  TokenKind kind = TokenKind::literal;
  char symbol = 0;
  int count = 0;
  std::string text;
};

enum class SectionKind : std::uint8_t { number, fraction, date, general, text };

/// Which numbers a section is for.
struct Condition {
  enum class Op : std::uint8_t { none, less, less_equal, equal, not_equal, greater_equal, greater };

  Op op = Op::none;
  double limit = 0;

  bool matches(double value) const;

  /// True when every number that matches is negative.
  bool only_negative() const;
};

/// One of the parts of a format code that semicolons divide.
struct Section {
  SectionKind kind = SectionKind::number;
  bool absolute = false;  ///< shows the number without its sign
  bool grouping = false;  ///< thousands separators
  bool twelve_hours = false;
  int power = 0;  ///< power of ten the number is multiplied by: percents, scaling commas
  int integer_digits = 0;
  int decimal_digits = 0;
  int exponent_digits = 0;
  int numerator_digits = 0;
  int denominator_digits = 0;
  int fixed_denominator = 0;
  int second_decimals = 0;
  bool has_time = false;
  Condition condition;
  std::vector<Token> tokens;
};

}  // namespace qto::embedded::formats
