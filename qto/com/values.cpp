#include "qto/com/values.hpp"

#include <cstring>

#include "qto/automation/text.hpp"
#include "qto/automation/variant_list.hpp"
#include "qto/com/conversion.hpp"
#include "qto/com/errors.hpp"

namespace qto::com {
namespace {

constexpr std::uint32_t cell_error = 0x800A0000;

/// Columns follow each other, as in every array of automation.
Array* make_array(const VariantArray& values, ObjectMarshaler& marshaler) {
  ComVariant owner;
  const auto rows = static_cast<std::uint32_t>(values.rows());
  const auto columns = static_cast<std::uint32_t>(values.columns());
  const bool list = dynamic_cast<const VariantList*>(&values);
  owner.array = list ? allocate_list(columns) : allocate_array(rows, columns);
  owner.type = vt_array | vt_variant;
  auto* element = static_cast<ComVariant*>(owner.array->data);
  try {
    for (int column = 1; column <= values.columns(); ++column)
      for (int row = 1; row <= values.rows(); ++row)
        *element++ = to_com(values.at(row, column), marshaler);
  } catch (...) {
    clear(owner);
    throw;
  }
  return owner.array;
}

Variant error_value(std::uint32_t code) {
  if (code - cell_error > 0xFFFF) throw CallFailure(CallError::type_mismatch);
  return Variant(static_cast<ErrorValue>(code - cell_error));
}

/// 96 bits behind scale, sign and the upper 32 of them, which lie in the head of the variant.
double decimal(const ComVariant& v) {
  const int scale = v.reserved[0] & 0xFF;
  const bool negative = v.reserved[0] & 0x8000;
  const std::uint32_t high = v.reserved[1] | std::uint32_t{v.reserved[2]} << 16;
  long double number = high * 18446744073709551616.0L + static_cast<long double>(v.bits);
  for (int i = 0; i < scale; ++i) number /= 10;
  return static_cast<double>(negative ? -number : number);
}

Variant read_value(std::uint16_t type, const void* at, ObjectMarshaler& marshaler) {
  ComVariant v;
  if (type == vt_variant) {
    const auto& held = *static_cast<const ComVariant*>(at);
    // A reference to a reference to a variant could go round in a circle.
    if (held.type == (vt_by_ref | vt_variant)) throw CallFailure(CallError::type_mismatch);
    return from_com(held, marshaler);
  }
  if (type == vt_decimal)
    std::memcpy(static_cast<void*>(&v), at, 16);
  else
    std::memcpy(&v.bits, at, size_of_value(type));
  v.type = type;
  return from_com(v, marshaler);
}

/// An array whose elements are of one type, or variants.
Variant read_array(std::uint16_t type, const Array* array, ObjectMarshaler& marshaler) {
  const std::size_t size = type == vt_variant ? sizeof(ComVariant) : size_of_value(type);
  if (!array || array->dimensions < 1 || array->dimensions > 2 || array->element_size != size)
    throw CallFailure(CallError::type_mismatch);
  constexpr std::uint32_t most = 1u << 24;
  const bool list = array->dimensions == 1;
  const std::uint32_t columns = array->bounds[0].count, rows = list ? 1 : array->bounds[1].count;
  if (columns == 0 || rows == 0) return Variant();
  if (columns > most || rows > most / columns) throw CallFailure(CallError::overflow);
  const auto height = static_cast<int>(rows), width = static_cast<int>(columns);
  const Ref<VariantArray> values = list ? Ref<VariantArray>(make_ref<VariantList>(width))
                                        : make_ref<VariantArray>(height, width);
  const auto* element = static_cast<const char*>(array->data);
  for (int column = 1; column <= width; ++column)
    for (int row = 1; row <= height; ++row, element += size)
      values->at(row, column) = read_value(type, element, marshaler);
  return Variant(Ref<const VariantArray>(values));
}

/// Whole numbers that are no Long cross as Doubles.
Variant whole_number(std::int64_t number) {
  if (number == static_cast<std::int32_t>(number))
    return Variant(static_cast<std::int32_t>(number));
  return Variant(static_cast<double>(number));
}

}  // namespace

std::size_t size_of_value(std::uint16_t type) {
  switch (type) {
    case vt_i1:
    case vt_u1:
      return 1;
    case vt_i2:
    case vt_u2:
    case vt_bool:
      return 2;
    case vt_i4:
    case vt_u4:
    case vt_int:
    case vt_uint:
    case vt_r4:
    case vt_error:
      return 4;
    case vt_text:
    case vt_dispatch:
    case vt_unknown:
      return sizeof(void*);
    case vt_i8:
    case vt_u8:
    case vt_r8:
    case vt_date:
    case vt_currency:
      return 8;
    default:
      throw CallFailure(CallError::type_mismatch);
  }
}

Text make_text(std::string_view utf8) { return allocate_text(text::to_utf16(utf8)); }

std::string read_text(const char16_t* text) { return text::from_utf16({text, text_length(text)}); }

ComVariant to_com(const Variant& value, ObjectMarshaler& marshaler) {
  ComVariant out;
  if (value.is_null()) {
    out.type = vt_null;
  } else if (const auto* flag = value.get_if<bool>()) {
    out.type = vt_bool;
    out.boolean = *flag ? -1 : 0;
  } else if (const auto* whole = value.get_if<std::int32_t>()) {
    out.type = vt_i4;
    out.i4 = *whole;
  } else if (const auto* number = value.get_if<double>()) {
    out.type = vt_r8;
    out.r8 = *number;
  } else if (const auto* date = value.get_if<Date>()) {
    out.type = vt_date;
    out.r8 = date->serial;
  } else if (const auto* error = value.get_if<ErrorValue>()) {
    out.type = vt_error;
    out.i4 = static_cast<std::int32_t>(cell_error + static_cast<std::uint32_t>(*error));
  } else if (value.is_text()) {
    out.text = make_text(value.text());
    out.type = vt_text;
  } else if (value.is_array()) {
    out.array = make_array(value.array(), marshaler);
    out.type = vt_array | vt_variant;
  } else if (value.is_object()) {
    const Ref<Object> object = value.object();
    out.unknown = object ? marshaler.marshal(object) : nullptr;
    out.type = vt_dispatch;
  }
  return out;
}

Variant from_com(const ComVariant& v, ObjectMarshaler& marshaler) {
  switch (v.type) {
    case vt_empty:
      return Variant();
    case vt_null:
      return Variant(Null());
    case vt_i2:
      return Variant(std::int32_t{v.i2});
    case vt_i4:
    case vt_int:
      return Variant(v.i4);
    case vt_i1:
      return whole_number(static_cast<std::int8_t>(v.bits));
    case vt_u1:
      return whole_number(static_cast<std::uint8_t>(v.bits));
    case vt_u2:
      return whole_number(static_cast<std::uint16_t>(v.bits));
    case vt_u4:
    case vt_uint:
      return whole_number(static_cast<std::uint32_t>(v.bits));
    case vt_i8:
      return whole_number(v.i8);
    case vt_u8:
      return Variant(static_cast<double>(v.bits));
    case vt_currency:
      return Variant(static_cast<double>(v.i8) / 10000);
    case vt_decimal:
      return Variant(decimal(v));
    case vt_r4:
      return Variant(static_cast<double>(v.r4));
    case vt_r8:
      return Variant(v.r8);
    case vt_date:
      return Variant(Date{v.r8});
    case vt_bool:
      return Variant(v.boolean != 0);
    case vt_text:
      return Variant(read_text(v.text));
    case vt_error:
      return error_value(static_cast<std::uint32_t>(v.i4));
    case vt_dispatch:
    case vt_unknown:
      return Variant(v.unknown ? marshaler.unmarshal(*v.unknown) : Ref<Object>());
    default:
      break;
  }
  if ((v.type & vt_array) && !(v.type & vt_by_ref))
    return read_array(v.type & ~vt_array, v.array, marshaler);
  if (!(v.type & vt_by_ref) || (v.type & vt_array) || !v.pointer)
    throw CallFailure(CallError::type_mismatch);
  return read_value(v.type & ~vt_by_ref, v.pointer, marshaler);
}

void write_back(ComVariant& target, const Variant& value, ObjectMarshaler& marshaler) {
  if (!(target.type & vt_by_ref) || !target.pointer) return;
  const std::uint16_t type = target.type & ~vt_by_ref;
  if (type == vt_variant) {
    auto& place = *static_cast<ComVariant*>(target.pointer);
    ComVariant answer = to_com(value, marshaler);
    clear(place);
    place = answer;
    return;
  }
  const Shape shape = type == vt_bool       ? Shape::boolean
                      : type == vt_i4       ? Shape::number
                      : type == vt_text     ? Shape::text
                      : type == vt_dispatch ? Shape::object
                                            : Shape::none;
  Variant fitting = value;
  if (shape == Shape::none || convert(fitting, {shape, ""}) != Conversion::done) return;
  const ComVariant answer = to_com(fitting, marshaler);
  ComVariant old;
  old.type = type;
  std::memcpy(&old.bits, target.pointer, size_of_value(type));
  std::memcpy(target.pointer, &answer.bits, size_of_value(type));
  clear(old);
}

}  // namespace qto::com
