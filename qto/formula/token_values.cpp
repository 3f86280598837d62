#include "qto/formula/token_values.hpp"

#include <charconv>
#include <limits>

#include "qto/automation/text.hpp"

namespace qto::formula {

double number_value(std::string_view token) noexcept {
  double value = 0;
  const auto [end, failure] = std::from_chars(token.data(), token.data() + token.size(), value);
  if (failure != std::errc::result_out_of_range) return value;
  // The reader does not tell too large from too small.
  return token.find("-") == std::string_view::npos ? std::numeric_limits<double>::infinity() : 0;
}

std::string unquote(std::string_view token) {
  if (token.size() < 2) return std::string(token);
  const char quote = token.front();
  std::string out;
  for (std::size_t i = 1; i + 1 < token.size(); ++i) {
    out.push_back(token[i]);
    if (token[i] == quote) ++i;
  }
  return out;
}

ErrorValue error_value(std::string_view token) noexcept {
  static constexpr ErrorValue errors[] = {
      ErrorValue::null,  ErrorValue::div0, ErrorValue::value, ErrorValue::ref,
      ErrorValue::name,  ErrorValue::num,  ErrorValue::na,    ErrorValue::getting_data,
      ErrorValue::spill, ErrorValue::calc};
  for (const ErrorValue error : errors)
    if (text::equal_ascii_nocase(error_text(error), token)) return error;
  return ErrorValue::value;
}

std::optional<bool> boolean_value(std::string_view token) noexcept {
  if (text::equal_ascii_nocase(token, "TRUE")) return true;
  if (text::equal_ascii_nocase(token, "FALSE")) return false;
  return std::nullopt;
}

}  // namespace qto::formula
