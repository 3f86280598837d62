#include "qto/hosts/embedded/xlsx/xml_value.hpp"

#include <charconv>
#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"

namespace qto::embedded {
namespace {

bool is_white_space(char c) noexcept { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

/// Without surrounding white space and a plus sign, which from_chars does not take.
std::string_view number_text(std::string_view text) noexcept {
  while (!text.empty() && is_white_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_white_space(text.back())) text.remove_suffix(1);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

/// The unit of an escape at `at`, or nothing.
std::optional<char16_t> escape_at(std::string_view text, std::size_t at) noexcept {
  constexpr std::size_t length = 7;
  if (at + length > text.size() || text[at] != '_' || text[at + 1] != 'x' || text[at + 6] != '_')
    return std::nullopt;
  unsigned unit = 0;
  const char* digits = text.data() + at + 2;
  const auto [end, error] = std::from_chars(digits, digits + 4, unit, 16);
  if (error != std::errc() || end != digits + 4) return std::nullopt;
  return static_cast<char16_t>(unit);
}

/// Takes a number of exactly `digits` digits off the front.
std::optional<int> take_digits(std::string_view& text, std::size_t digits) noexcept {
  if (text.size() < digits) return std::nullopt;
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + digits, value);
  if (error != std::errc() || end != text.data() + digits || value < 0) return std::nullopt;
  text.remove_prefix(digits);
  return value;
}

bool take(std::string_view& text, char c) noexcept {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

/// "12:30:15.5Z" as a fraction of a day; the zone is not applied, cells know none.
std::optional<double> time_fraction(std::string_view text) noexcept {
  const auto hour = take_digits(text, 2);
  if (!hour || !take(text, ':')) return std::nullopt;
  const auto minute = take_digits(text, 2);
  double seconds = 0;
  if (minute && take(text, ':')) {
    const std::string_view rest = text.substr(0, text.find_first_of("Zz+-"));
    const auto exact = real_number(rest);
    if (!exact) return std::nullopt;
    seconds = *exact;
  }
  if (!minute || *hour > 24 || *minute > 59 || !(seconds >= 0 && seconds < 61)) return std::nullopt;
  return (*hour * 3600 + *minute * 60 + seconds) / 86'400;
}

}  // namespace

std::optional<std::int64_t> whole_number(std::string_view text) noexcept {
  text = number_text(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> real_number(std::string_view text) noexcept {
  text = number_text(text);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range)
    return text.find("e-") != text.npos || text.find("E-") != text.npos ? std::optional(0.0)
                                                                        : std::nullopt;
  if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
  return value;
}

bool xml_boolean(std::string_view text) noexcept {
  return text == "1" || text == "true" || text == "on" || text == "TRUE";
}

void decode_escapes(std::string& text) {
  std::size_t at = text.find("_x");
  while (at != std::string::npos && !escape_at(text, at)) at = text.find("_x", at + 1);
  if (at == std::string::npos) return;
  std::string decoded = text.substr(0, at);
  std::u16string units;  // of adjacent escapes, so that pairs of surrogates find together
  while (at < text.size()) {
    if (const auto unit = escape_at(text, at)) {
      units.push_back(*unit);
      at += 7;
      continue;
    }
    decoded += text::from_utf16(units);
    units.clear();
    decoded.push_back(text[at++]);
  }
  text = decoded + text::from_utf16(units);
}

void cut_to_units(std::string& text, std::size_t units) {
  if (text.size() <= units) return;
  std::size_t at = 0;
  for (std::size_t used = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t bytes = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    used += bytes == 4 ? 2 : 1;
    if (used > units) break;
    at += bytes;
  }
  if (at < text.size()) text.resize(at);
}

std::optional<double> serial_of_iso(std::string_view text, bool date1904) noexcept {
  text = number_text(text);
  double day = 0;
  if (!take(text, 'T') && text.size() >= 10 && text[4] == '-') {
    const auto year = take_digits(text, 4);
    const bool first = take(text, '-');
    const auto month = take_digits(text, 2);
    const bool second = take(text, '-');
    const auto of_month = take_digits(text, 2);
    if (!year || !first || !month || !second || !of_month) return std::nullopt;
    const auto serial = formats::serial_from_civil({*year, *month, *of_month}, date1904);
    if (!serial) return std::nullopt;
    day = *serial;
    if (text.empty() || text == "Z") return day;
    if (!take(text, 'T') && !take(text, ' ')) return std::nullopt;
  }
  const auto time = time_fraction(text);
  return time ? std::optional(day + *time) : std::nullopt;
}

ErrorValue error_from(std::string_view text) noexcept {
  using enum ErrorValue;
  for (const ErrorValue known : {null, div0, value, ref, name, num, na, getting_data, spill, calc})
    if (text == error_text(known)) return known;
  return value;
}

}  // namespace qto::embedded
