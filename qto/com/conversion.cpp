#include "qto/com/conversion.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "qto/automation/text.hpp"
#include "qto/com/errors.hpp"

namespace qto::com {
namespace {

std::optional<double> number_of(const Variant& value) {
  if (value.is_empty()) return 0;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole;
  if (const auto* number = value.get_if<double>()) return *number;
  if (const auto* flag = value.get_if<bool>()) return *flag ? -1 : 0;
  if (const auto* date = value.get_if<Date>()) return date->serial;
  if (value.is_text()) return text::to_number(value.text());
  return std::nullopt;
}

Conversion to_whole(Variant& value) {
  if (value.get_if<std::int32_t>()) return Conversion::done;
  const auto number = number_of(value);
  if (!number || std::isnan(*number)) return Conversion::mismatch;
  const double rounded = std::nearbyint(*number);
  if (rounded < std::numeric_limits<std::int32_t>::min() ||
      rounded > std::numeric_limits<std::int32_t>::max())
    return Conversion::overflow;
  value = Variant(static_cast<std::int32_t>(rounded));
  return Conversion::done;
}

Conversion to_boolean(Variant& value) {
  if (value.is_bool()) return Conversion::done;
  if (value.is_text()) {
    const bool yes = text::equal_ascii_nocase(value.text(), "True");
    if (yes || text::equal_ascii_nocase(value.text(), "False")) {
      value = Variant(yes);
      return Conversion::done;
    }
  }
  const auto number = number_of(value);
  if (!number) return Conversion::mismatch;
  value = Variant(*number != 0);
  return Conversion::done;
}

Conversion to_text(Variant& value) {
  if (value.is_text()) return Conversion::done;
  if (const auto* flag = value.get_if<bool>()) {
    value = Variant(*flag ? "True" : "False");
    return Conversion::done;
  }
  if (value.is_empty()) {
    value = Variant("");
    return Conversion::done;
  }
  if (!value.is_number()) return Conversion::mismatch;
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, *number_of(value)).ptr;
  value = Variant(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
  return Conversion::done;
}

Conversion to_object(Variant& value) {
  if (value.is_object()) return Conversion::done;
  if (!value.is_empty() && !value.is_null()) return Conversion::mismatch;
  value = Variant(Ref<Object>());
  return Conversion::done;
}

}  // namespace

Conversion convert(Variant& value, const Type& type) {
  switch (type.shape) {
    case Shape::boolean:
      return to_boolean(value);
    case Shape::number:
    case Shape::enumeration:
      return to_whole(value);
    case Shape::text:
      return to_text(value);
    case Shape::object:
      return to_object(value);
    case Shape::variant:
    case Shape::none:
      break;
  }
  return Conversion::done;
}

void convert_or_throw(Variant& value, const Type& type, std::uint32_t position) {
  switch (convert(value, type)) {
    case Conversion::done:
      return;
    case Conversion::mismatch:
      throw CallFailure(CallError::type_mismatch, position);
    case Conversion::overflow:
      throw CallFailure(CallError::overflow, position);
  }
}

}  // namespace qto::com
