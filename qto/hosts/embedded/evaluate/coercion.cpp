#include "qto/hosts/embedded/evaluate/coercion.hpp"

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/formats/parse_number.hpp"

namespace qto::embedded {

Outcome<double> to_number(const ValueView& value, const DateSettings& dates) {
  switch (value.type()) {
    case CellType::empty:
      return 0.0;
    case CellType::number:
      return value.number();
    case CellType::boolean:
      return value.boolean() ? 1.0 : 0.0;
    case CellType::error:
      return value.error();
    case CellType::text:
      break;
  }
  const auto parsed = formats::parse_number(value.text(), dates.date1904, dates.current_year);
  if (!parsed) return ErrorValue::value;
  return parsed->value;
}

Outcome<bool> to_logical(const ValueView& value) {
  switch (value.type()) {
    case CellType::empty:
      return false;
    case CellType::number:
      return value.number() != 0;
    case CellType::boolean:
      return value.boolean();
    case CellType::error:
      return value.error();
    case CellType::text:
      break;
  }
  if (text::equal_ascii_nocase(value.text(), "TRUE")) return true;
  if (text::equal_ascii_nocase(value.text(), "FALSE")) return false;
  return ErrorValue::value;
}

Outcome<std::string> to_text(const ValueView& value) {
  switch (value.type()) {
    case CellType::empty:
      break;
    case CellType::number:
      return formats::general_text(value.number());
    case CellType::boolean:
      return std::string(value.boolean() ? "TRUE" : "FALSE");
    case CellType::error:
      return value.error();
    case CellType::text:
      return std::string(value.text());
  }
  return std::string();
}

}  // namespace qto::embedded
