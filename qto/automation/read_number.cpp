#include <charconv>
#include <string>

#include "qto/automation/text.hpp"

namespace qto::text {
namespace {

bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }
bool is_space(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Reads a text as the general text-to-number conversion of automation run times does: spaces
/// around, one sign before or after, a currency sign, parentheses for negatives, "," between digits
/// of the whole part, "." once, an exponent.
class NumberReader {
 public:
  explicit NumberReader(std::string_view text) : rest_(text) {}

  std::optional<double> read() {
    strip();
    const bool parenthesised = take('(');
    strip();
    bool negative = parenthesised;
    if (!read_signs(negative)) return std::nullopt;
    if (!read_digits()) return std::nullopt;
    strip();
    if (parenthesised && !take(')')) return std::nullopt;
    if (!parenthesised && !signed_ && take('-')) negative = true;
    strip();
    if (!rest_.empty()) return std::nullopt;
    return value(negative);
  }

 private:
  bool take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void strip() {
    while (!rest_.empty() && is_space(rest_.front())) rest_.remove_prefix(1);
  }
  bool read_signs(bool& negative) {
    bool currency = false;
    for (;;) {
      if (!signed_ && !rest_.empty() && (rest_.front() == '+' || rest_.front() == '-')) {
        if (negative && rest_.front() == '-') return false;
        negative = negative || rest_.front() == '-';
        signed_ = true;
      } else if (!currency && !rest_.empty() && rest_.front() == '$') {
        currency = true;
      } else {
        return true;
      }
      rest_.remove_prefix(1);
      strip();
    }
  }
  bool read_digits() {
    bool any = false;
    while (!rest_.empty() && (is_digit(rest_.front()) || (any && rest_.front() == ','))) {
      any = true;
      if (rest_.front() != ',') digits_.push_back(rest_.front());
      rest_.remove_prefix(1);
    }
    if (take('.')) {
      digits_.push_back('.');
      while (!rest_.empty() && is_digit(rest_.front())) {
        any = true;
        digits_.push_back(rest_.front());
        rest_.remove_prefix(1);
      }
    }
    return any && read_exponent();
  }
  bool read_exponent() {
    if (rest_.empty() || (rest_.front() != 'E' && rest_.front() != 'e')) return true;
    rest_.remove_prefix(1);
    digits_.push_back('e');
    if (take('-'))
      digits_.push_back('-');
    else
      take('+');
    bool any = false;
    for (; !rest_.empty() && is_digit(rest_.front()); any = true) {
      digits_.push_back(rest_.front());
      rest_.remove_prefix(1);
    }
    return any;
  }
  std::optional<double> value(bool negative) const {
    double number = 0;
    const auto result = std::from_chars(digits_.data(), digits_.data() + digits_.size(), number);
    if (result.ec != std::errc() || result.ptr != digits_.data() + digits_.size())
      return std::nullopt;
    return negative ? -number : number;
  }

  std::string_view rest_;
  std::string digits_;
  bool signed_ = false;
};

}  // namespace

std::optional<double> to_number(std::string_view text) noexcept {
  // Most texts asked about are references and names; their first character settles it.
  for (const char c : text) {
    if (is_space(c)) continue;
    if (!is_digit(c) && c != '.' && c != '-' && c != '+' && c != '$' && c != '(')
      return std::nullopt;
    return NumberReader(text).read();
  }
  return std::nullopt;
}

bool is_numeric(std::string_view text) noexcept { return to_number(text).has_value(); }

}  // namespace qto::text
