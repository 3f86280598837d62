#include "qto/hosts/embedded/formats/parse_number.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formats/parse_date_time.hpp"
#include "qto/hosts/embedded/formats/text_cursor.hpp"

namespace qto::embedded::formats {
namespace {

using Kind = ParsedNumber::Kind;

// Longer texts are no numbers; the bound also keeps the work per text small.
constexpr std::size_t kMaxLength = 255;
constexpr std::size_t kMaxFractionDigits = 9;

double to_double(std::string_view digits) {
  double value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

/// Reads [sign] [$] digits [.digits] [exponent] [%], or the same in parentheses, or a whole number
/// with a fraction.
class NumberReader {
 public:
  explicit NumberReader(std::string_view text) : cursor_(text) {}

  std::optional<ParsedNumber> read() {
    read_signs();
    if (!read_integer_part()) return std::nullopt;
    if (!read_decimals() || !read_exponent()) return std::nullopt;
    double value = 0;
    if (is_mixed_fraction_ahead()) {
      const auto fraction = read_fraction();
      if (!fraction) return std::nullopt;
      value = to_double(mantissa_) + *fraction;
    } else {
      const auto number = convert();
      if (!number) return std::nullopt;
      value = *number;
    }
    if (!read_percent() || !read_end()) return std::nullopt;
    if (kind_ == Kind::percent) value /= 100;
    return ParsedNumber{negative_ ? -value : value, kind_};
  }

 private:
  // A sign and the currency stand in either order; parentheses take the place of a minus sign.
  void read_signs() {
    parenthesis_ = cursor_.accept('(');
    cursor_.skip_spaces();
    negative_ = parenthesis_;
    bool sign = parenthesis_;
    for (bool more = true; more;) {
      more = false;
      if (!sign && (cursor_.peek() == '-' || cursor_.peek() == '+')) {
        negative_ = cursor_.peek() == '-';
        cursor_.accept(cursor_.peek());
        sign = more = true;
      } else if (kind_ != Kind::currency && cursor_.accept('$')) {
        kind_ = Kind::currency;
        more = true;
      }
      if (more) cursor_.skip_spaces();
    }
  }

  // Separators of thousands stand between groups of exactly three digits.
  bool read_integer_part() {
    mantissa_ = cursor_.digits();
    integer_digits_ = mantissa_.size();
    if (cursor_.peek() == ',' && (mantissa_.empty() || mantissa_.size() > 3)) return false;
    while (cursor_.accept(',')) {
      const std::string_view group = cursor_.digits();
      if (group.size() != 3) return false;
      mantissa_ += group;
      grouped_ = true;
    }
    return true;
  }

  bool read_decimals() {
    if (!cursor_.accept('.')) return !mantissa_.empty();
    has_point_ = true;
    const std::string_view decimals = cursor_.digits();
    if (mantissa_.empty()) mantissa_ = "0";
    mantissa_ += '.';
    mantissa_ += decimals;
    return integer_digits_ > 0 || !decimals.empty();
  }

  bool read_exponent() {
    if (cursor_.peek() != 'e' && cursor_.peek() != 'E') return true;
    cursor_.accept(cursor_.peek());
    mantissa_ += 'e';
    if (cursor_.accept('-')) {
      mantissa_ += '-';
    } else {
      cursor_.accept('+');
    }
    const std::string_view digits = cursor_.digits();
    mantissa_ += digits;
    if (kind_ == Kind::number) kind_ = Kind::scientific;
    has_exponent_ = true;
    return !digits.empty();
  }

  std::optional<double> convert() const {
    double value = 0;
    const char* end = mantissa_.data() + mantissa_.size();
    const auto read = std::from_chars(mantissa_.data(), end, value);
    if (read.ec == std::errc::result_out_of_range) {
      // Too small is zero, too large is no number.
      const bool tiny = mantissa_.find("e-") != std::string::npos || mantissa_.starts_with("0.");
      return tiny ? std::optional<double>(0.0) : std::nullopt;
    }
    if (read.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
    return value;
  }

  // "1 1/2": a whole number, spaces, a digit.
  bool is_mixed_fraction_ahead() {
    if (has_point_ || has_exponent_ || grouped_ || kind_ != Kind::number) return false;
    TextCursor ahead = cursor_;
    if (!ahead.skip_spaces() || ahead.digits().empty() || !ahead.accept('/')) return false;
    return true;
  }

  std::optional<double> read_fraction() {
    cursor_.skip_spaces();
    const std::string_view numerator = cursor_.digits();
    cursor_.accept('/');
    const std::string_view denominator = cursor_.digits();
    const bool readable = !denominator.empty() && numerator.size() <= kMaxFractionDigits &&
                          denominator.size() <= kMaxFractionDigits;
    if (!readable || to_double(denominator) == 0) return std::nullopt;
    kind_ = Kind::fraction;
    return to_double(numerator) / to_double(denominator);
  }

  bool read_percent() {
    cursor_.skip_spaces();
    if (!cursor_.accept('%')) return true;
    if (kind_ == Kind::currency || kind_ == Kind::fraction) return false;
    kind_ = Kind::percent;
    return true;
  }

  bool read_end() {
    cursor_.skip_spaces();
    return (!parenthesis_ || cursor_.accept(')')) && cursor_.at_end();
  }

  TextCursor cursor_;
  std::string mantissa_;  // what std::from_chars reads
  std::size_t integer_digits_ = 0;
  Kind kind_ = Kind::number;
  bool negative_ = false;
  bool parenthesis_ = false;
  bool grouped_ = false;
  bool has_point_ = false;
  bool has_exponent_ = false;
};

}  // namespace

std::optional<ParsedNumber> parse_number(std::string_view text, bool date1904, int current_year) {
  text = text::trim(text);
  const bool has_digit =
      std::any_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!has_digit || text.size() > kMaxLength) return std::nullopt;
  if (const auto number = NumberReader(text).read()) return number;
  return parse_date_time(text, date1904, current_year);
}

}  // namespace qto::embedded::formats
