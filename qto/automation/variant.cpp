#include "qto/automation/variant.hpp"

namespace qto {

std::string_view error_text(ErrorValue error) noexcept {
  switch (error) {
    case ErrorValue::null:
      return "#NULL!";
    case ErrorValue::div0:
      return "#DIV/0!";
    case ErrorValue::value:
      return "#VALUE!";
    case ErrorValue::ref:
      return "#REF!";
    case ErrorValue::name:
      return "#NAME?";
    case ErrorValue::num:
      return "#NUM!";
    case ErrorValue::na:
      return "#N/A";
    case ErrorValue::getting_data:
      return "#GETTING_DATA";
    case ErrorValue::spill:
      return "#SPILL!";
    case ErrorValue::calc:
      return "#CALC!";
  }
  return "#VALUE!";
}

Variant::Variant(Ref<const VariantArray> v) noexcept : value_(std::move(v)) {}

const std::string& Variant::text() const noexcept {
  static const std::string nothing;
  const auto* shared = get_if<Ref<const SharedText>>();
  return shared && *shared ? (*shared)->str() : nothing;
}

const VariantArray& Variant::array() const noexcept { return **get_if<Ref<const VariantArray>>(); }

Ref<Object> Variant::object() const noexcept {
  const auto* held = get_if<Ref<Object>>();
  return held ? *held : Ref<Object>();
}

std::string_view Variant::type_name() const noexcept {
  static constexpr std::string_view names[] = {"Empty", "Null",  "Boolean", "Long",      "Double",
                                               "Date",  "Error", "String",  "Variant()", "Nothing"};
  if (const auto* held = get_if<Ref<Object>>(); held && *held) return (*held)->TypeName();
  return names[value_.index()];
}

bool Variant::operator==(const Variant& other) const noexcept {
  if (value_.index() != other.value_.index()) return false;
  if (is_text()) return text() == other.text();
  if (is_array()) {
    const VariantArray& a = array();
    const VariantArray& b = other.array();
    return &a == &b ||
           (a.rows() == b.rows() && a.columns() == b.columns() && a.items() == b.items());
  }
  return value_ == other.value_;
}

}  // namespace qto
