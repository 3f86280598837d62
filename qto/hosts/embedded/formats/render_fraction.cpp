#include <algorithm>
#include <cmath>
#include <cstdint>

#include "qto/hosts/embedded/formats/renderers.hpp"

namespace qto::embedded::formats {
namespace {

constexpr int kMaxDenominatorDigits = 7;

struct Ratio {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;
};

double distance(const Ratio& ratio, double value) {
  return std::abs(static_cast<double>(ratio.numerator) / static_cast<double>(ratio.denominator) -
                  value);
}

/// The ratio nearest to `value` (0 <= value < 1) among those with denominators up to a limit, found
/// along the continued fraction of the value.
Ratio nearest_ratio(double value, std::int64_t max_denominator) {
  Ratio before{1, 0};
  Ratio last{0, 1};
  double rest = value;
  // Equal up to the 15 digits a number has.
  constexpr double kExact = 1e-15;
  while (distance(last, value) > kExact) {
    rest = 1 / rest;
    const double whole = std::floor(rest);
    rest -= whole;
    const std::int64_t room = (max_denominator - before.denominator) / last.denominator;
    const bool fits = whole <= static_cast<double>(room);
    const std::int64_t step = fits ? static_cast<std::int64_t>(whole) : room;
    const Ratio next{before.numerator + step * last.numerator,
                     before.denominator + step * last.denominator};
    if (!fits) {
      const bool better = next.denominator > 0 && distance(next, value) < distance(last, value);
      return better ? next : last;
    }
    before = last;
    last = next;
    if (rest <= 0) break;
  }
  return last;
}

Ratio fraction_of(const Section& section, double value) {
  if (section.fixed_denominator > 0) {
    return {std::llround(value * section.fixed_denominator), section.fixed_denominator};
  }
  const int digits = std::min(section.denominator_digits, kMaxDenominatorDigits);
  return nearest_ratio(value, power_of_ten(digits) - 1);
}

/// Writes the tokens of a fraction: [whole] numerator / denominator.
class FractionRenderer {
 public:
  FractionRenderer(const Section& section, double whole, double numerator, double denominator,
                   std::string& out)
      : section_(section),
        whole_(to_decimal(whole)),
        numerator_(to_decimal(numerator)),
        denominator_(to_decimal(denominator)),
        whole_writer_(whole_, section.integer_digits, section.grouping),
        numerator_writer_(numerator_, section.numerator_digits, false),
        out_(out) {
    for (const Token& token : section.tokens) {
      const bool numerator_zero = token.kind == TokenKind::numerator_digit && token.symbol == '0';
      if (numerator_zero) shows_zero_numerator_ = true;
    }
    if (section.integer_digits == 0) {
      numerator_writer_.show_zero();
    } else if (numerator_.is_zero()) {
      whole_writer_.show_zero();
    }
  }

  void run() {
    for (const Token& token : section_.tokens) render(token);
  }

 private:
  // A number without a fraction leaves the place of the fraction empty.
  bool hides_fraction() const {
    return section_.integer_digits > 0 && numerator_.is_zero() && !shows_zero_numerator_;
  }

  void render(const Token& token) {
    switch (token.kind) {
      case TokenKind::integer_digit:
        return whole_writer_.write(token.symbol, out_);
      case TokenKind::numerator_digit:
        return numerator_writer_.write(token.symbol, out_);
      case TokenKind::slash:
        out_ += hides_fraction() ? ' ' : '/';
        return;
      case TokenKind::fixed_denominator:
        if (hides_fraction()) {
          out_.append(token.text.size(), ' ');
        } else {
          out_ += token.text;
        }
        return;
      case TokenKind::denominator_digit:
        return write_denominator(token.symbol);
      default:
        out_ += token.text;
    }
  }

  // Denominators stand to the left of their place.
  void write_denominator(char symbol) {
    const int length = hides_fraction() ? 0 : denominator_.integer_length();
    const int place = denominator_place_++;
    if (place < length) {
      out_ += denominator_.digit(length - 1 - place);
    } else if (symbol != '#') {
      out_ += ' ';
    }
  }

  const Section& section_;
  Decimal whole_;
  Decimal numerator_;
  Decimal denominator_;
  IntegerWriter whole_writer_;
  IntegerWriter numerator_writer_;
  std::string& out_;
  bool shows_zero_numerator_ = false;
  int denominator_place_ = 0;
};

}  // namespace

bool render_fraction(const Section& section, double magnitude, std::string& out) {
  const double value = magnitude * std::pow(10.0, section.power);
  if (!std::isfinite(value)) return false;
  double whole = std::floor(value);
  const Ratio ratio = fraction_of(section, value - whole);
  auto numerator = static_cast<double>(ratio.numerator);
  const auto denominator = static_cast<double>(ratio.denominator);
  if (section.integer_digits == 0) {
    numerator += whole * denominator;
  } else if (numerator == denominator) {
    whole += 1;
    numerator = 0;
  }
  if (!std::isfinite(whole) || !std::isfinite(numerator)) return false;
  FractionRenderer(section, whole, numerator, denominator, out).run();
  return true;
}

}  // namespace qto::embedded::formats
