#include <cstdlib>

#include "qto/hosts/embedded/formats/renderers.hpp"

namespace qto::embedded::formats {
namespace {

int floor_to_multiple(int value, int step) {
  const int rest = value % step;
  return value - (rest < 0 ? rest + step : rest);
}

/// Takes the power of ten out of `number` that leaves as many integer digits as there are
/// placeholders, or a multiple of that many powers when there are several.
int split_exponent(const Section& section, Decimal& number) {
  if (number.is_zero()) return 0;
  const int step = section.integer_digits;
  const auto exponent_of = [step](const Decimal& value) {
    if (step == 0) return value.exponent + 1;
    return step == 1 ? value.exponent : floor_to_multiple(value.exponent, step);
  };
  int exponent = exponent_of(number);
  number.shift(-exponent);
  number.round_to(section.decimal_digits);
  const int carried = number.is_zero() ? 0 : exponent_of(number);
  number.shift(-carried);
  return exponent + carried;
}

class NumberRenderer {
 public:
  NumberRenderer(const Section& section, const Decimal& number, int exponent, std::string& out)
      : section_(section),
        number_(number),
        negative_exponent_(exponent < 0),
        exponent_(to_decimal(std::abs(exponent))),
        integer_(number_, section.integer_digits, section.grouping),
        exponent_writer_(exponent_, section.exponent_digits, false),
        out_(out) {
    int place = 0;
    for (const Token& token : section.tokens) {
      if (token.kind != TokenKind::decimal_digit) continue;
      ++place;
      if (token.symbol == '0') forced_decimals_ = place;
    }
  }

  void run() {
    for (const Token& token : section_.tokens) render(token);
  }

 private:
  void render(const Token& token) {
    switch (token.kind) {
      case TokenKind::integer_digit:
        return integer_.write(token.symbol, out_);
      case TokenKind::point:
        return write_point();
      case TokenKind::decimal_digit:
        return write_decimal(token.symbol);
      case TokenKind::exponent:
        out_ += token.symbol;
        if (negative_exponent_) {
          out_ += '-';
        } else if (token.count != 0) {
          out_ += '+';
        }
        return;
      case TokenKind::exponent_digit:
        return exponent_writer_.write(token.symbol, out_);
      default:
        out_ += token.text;
    }
  }

  // Without a placeholder before the point the integer digits still show.
  void write_point() {
    if (section_.integer_digits == 0) {
      for (int power = number_.integer_length() - 1; power >= 0; --power) {
        out_ += number_.digit(power);
      }
    }
    out_ += '.';
  }

  void write_decimal(char symbol) {
    ++place_;
    if (place_ <= forced_decimals_ || place_ <= number_.fraction_length()) {
      out_ += number_.digit(-place_);
    } else if (symbol == '?') {
      out_ += ' ';
    }
  }

  const Section& section_;
  const Decimal& number_;
  bool negative_exponent_;
  Decimal exponent_;
  IntegerWriter integer_;
  IntegerWriter exponent_writer_;
  std::string& out_;
  int forced_decimals_ = 0;
  int place_ = 0;
};

}  // namespace

void IntegerWriter::write_digit(int power, char symbol, std::string& out) {
  const bool last_zero = power == 0 && show_zero_;
  if (power < length_ || symbol == '0' || zeros_ || last_zero) {
    out += number_.digit(power);
    if (grouping_ && power > 0 && power % 3 == 0) out += ',';
  } else if (symbol == '?') {
    out += ' ';
    if (grouping_ && power > 0 && power % 3 == 0) out += ' ';
  }
}

void IntegerWriter::write(char symbol, std::string& out) {
  if (first_) {
    for (int power = length_ - 1; power >= position_; --power) write_digit(power, symbol, out);
    first_ = false;
  }
  write_digit(--position_, symbol, out);
  zeros_ |= symbol == '0';
}

void render_number(const Section& section, double magnitude, std::string& out) {
  Decimal number = to_decimal(magnitude);
  number.shift(section.power);
  int exponent = 0;
  if (section.exponent_digits > 0) {
    exponent = split_exponent(section, number);
  } else {
    number.round_to(section.decimal_digits);
  }
  NumberRenderer(section, number, exponent, out).run();
}

}  // namespace qto::embedded::formats
