#include "qto/hosts/embedded/evaluate/value_view.hpp"

namespace qto::embedded {

Variant ValueView::to_variant() const {
  switch (type_) {
    case CellType::empty:
      break;
    case CellType::number:
      return number_;
    case CellType::text:
      return text_;
    case CellType::boolean:
      return boolean_;
    case CellType::error:
      return error_;
  }
  return {};
}

ValueView view_of(const Variant& value) noexcept {
  if (const auto* number = value.get_if<double>()) return *number;
  if (value.is_text()) return std::string_view(value.text());
  if (const auto* flag = value.get_if<bool>()) return *flag;
  if (const auto* error = value.get_if<ErrorValue>()) return *error;
  if (const auto* whole = value.get_if<std::int32_t>()) return static_cast<double>(*whole);
  if (const auto* date = value.get_if<Date>()) return date->serial;
  if (value.is_array()) return view_of(value.array().items().front());
  if (value.is_object()) return ErrorValue::value;
  return {};
}

}  // namespace qto::embedded
