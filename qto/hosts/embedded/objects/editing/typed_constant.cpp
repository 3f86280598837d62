#include "qto/hosts/embedded/objects/editing/typed_constant.hpp"

#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formats/parse_number.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"

namespace qto::embedded {
namespace {

constexpr ErrorValue errors[] = {ErrorValue::null, ErrorValue::div0, ErrorValue::value,
                                 ErrorValue::ref,  ErrorValue::name, ErrorValue::num,
                                 ErrorValue::na};

std::string_view format_of(const formats::ParsedNumber& number, std::string_view typed) {
  using Kind = formats::ParsedNumber::Kind;
  const bool decimals = typed.find('.') != std::string_view::npos;
  switch (number.kind) {
    case Kind::number:
      return typed.find(',') == std::string_view::npos ? "" : decimals ? "#,##0.00" : "#,##0";
    case Kind::percent:
      return decimals ? "0.00%" : "0%";
    case Kind::currency:
      return decimals ? "$#,##0.00" : "$#,##0";
    case Kind::scientific:
      return "0.00E+00";
    case Kind::date:
      return "m/d/yyyy";
    case Kind::time:
      return "h:mm:ss";
    case Kind::date_time:
      return "m/d/yyyy h:mm";
    case Kind::fraction:
      return "# ?/?";
  }
  return "";
}

int year_of(double moment) {
  const auto date = formats::civil_from_serial(static_cast<int>(std::floor(moment)), false);
  return date ? date->year : 1900;
}

}  // namespace

TypedConstant read_typed(std::string_view typed, bool date1904,
                         const ApplicationObject& application) {
  if (typed.starts_with('\'')) return {Variant(typed.substr(1)), {}};
  const std::string_view trimmed = text::trim(typed);
  if (text::equal_ascii_nocase(trimmed, "TRUE")) return {true, {}};
  if (text::equal_ascii_nocase(trimmed, "FALSE")) return {false, {}};
  for (const ErrorValue error : errors)
    if (text::equal_ascii_nocase(trimmed, error_text(error))) return {error, {}};
  const int year = year_of(application.now());
  if (const auto number = formats::parse_number(typed, date1904, year))
    return {number->value, format_of(*number, typed)};
  return {Variant(typed), {}};
}

}  // namespace qto::embedded
