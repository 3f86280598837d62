#include "qto/automation/com/com_values.hpp"

#include <cstdlib>
#include <cstring>
#include <new>

#include "qto/automation/com/convert.hpp"
#include "qto/automation/com/errors.hpp"
#include "qto/automation/text.hpp"

namespace qto::server::com {
namespace {

constexpr std::size_t header = 8;  // keeps the text aligned; the count takes the last four bytes
constexpr std::uint32_t cell_error = 0x800A0000;

void* checked(void* memory) {
  if (!memory) throw std::bad_alloc();
  return memory;
}

std::uint32_t text_bytes(const char16_t* text) {
  std::uint32_t bytes = 0;
  if (text) std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, sizeof bytes);
  return bytes;
}

std::size_t element_count(const Array& array) {
  std::size_t count = 1;
  for (int i = 0; i < array.dimensions; ++i) count *= array.bounds[i].count;
  return count;
}

void free_array(Array* array) noexcept {
  if (!array) return;
  auto* elements = static_cast<ComVariant*>(array->data);
  for (std::size_t i = 0; i < element_count(*array); ++i) clear(elements[i]);
  std::free(elements);
  std::free(array);
}

/// Columns follow each other, as in every array of automation.
Array* make_array(const VariantArray& values, ObjectDoor& door) {
  const auto rows = static_cast<std::uint32_t>(values.rows());
  const auto columns = static_cast<std::uint32_t>(values.columns());
  auto* array = static_cast<Array*>(checked(std::calloc(1, sizeof(Array))));
  array->data = std::calloc(values.items().size() + 1, sizeof(ComVariant));
  *array = {2, 0x880, sizeof(ComVariant), 0, array->data, {{columns, 1}, {rows, 1}}};
  auto* element = static_cast<ComVariant*>(checked(array->data));
  for (int column = 1; column <= values.columns(); ++column)
    for (int row = 1; row <= values.rows(); ++row)
      *element++ = to_com(values.at(row, column), door);
  return array;
}

Variant error_value(std::uint32_t code) {
  if (code - cell_error > 0xFFFF) throw CallFailure(CallError::type_mismatch);
  return Variant(static_cast<ErrorValue>(code - cell_error));
}

Variant read_value(std::uint16_t type, const void* at, ObjectDoor& door) {
  ComVariant v;
  if (type == vt_variant) return from_com(*static_cast<const ComVariant*>(at), door);
  std::memcpy(v.bits, at,
              type == vt_bool || type == vt_i2                     ? 2
              : type == vt_i4 || type == vt_r4 || type == vt_error ? 4
                                                                   : 8);
  v.type = type;
  return from_com(v, door);
}

}  // namespace

Text make_text(std::string_view utf8) {
  const std::u16string wide = text::to_utf16(utf8);
  const auto bytes = static_cast<std::uint32_t>(wide.size() * sizeof(char16_t));
  auto* memory = static_cast<char*>(checked(std::malloc(header + bytes + sizeof(char16_t))));
  std::memcpy(memory + header - 4, &bytes, sizeof bytes);
  std::memcpy(memory + header, wide.c_str(), bytes + sizeof(char16_t));
  return reinterpret_cast<Text>(memory + header);
}

std::string read_text(const char16_t* text) {
  return text::from_utf16({text, text_bytes(text) / sizeof(char16_t)});
}

void free_text(Text text) noexcept {
  if (text) std::free(reinterpret_cast<char*>(text) - header);
}

void clear(ComVariant& variant) noexcept {
  if (variant.type == vt_text) free_text(variant.text);
  if (variant.type == (vt_array | vt_variant)) free_array(variant.array);
  if ((variant.type == vt_dispatch || variant.type == vt_unknown) && variant.unknown)
    variant.unknown->Release();
  variant = ComVariant();
}

ComVariant to_com(const Variant& value, ObjectDoor& door) {
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
    out.array = make_array(value.array(), door);
    out.type = vt_array | vt_variant;
  } else if (value.is_object()) {
    const Ref<Object> object = value.object();
    out.unknown = object ? door.show(object) : nullptr;
    out.type = vt_dispatch;
  }
  return out;
}

Variant from_com(const ComVariant& v, ObjectDoor& door) {
  switch (v.type) {
    case vt_empty:
      return Variant();
    case vt_null:
      return Variant(Null());
    case vt_i2:
      return Variant(std::int32_t{v.i2});
    case vt_i4:
      return Variant(v.i4);
    case vt_i8:
      return Variant(static_cast<double>(v.i8));
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
      return Variant(v.unknown ? door.take(*v.unknown) : Ref<Object>());
    default:
      break;
  }
  if (!(v.type & vt_by_ref) || (v.type & vt_array) || !v.pointer)
    throw CallFailure(CallError::type_mismatch);
  return read_value(v.type & ~vt_by_ref, v.pointer, door);
}

void write_back(ComVariant& target, const Variant& value, ObjectDoor& door) {
  if (!(target.type & vt_by_ref) || !target.pointer) return;
  const std::uint16_t type = target.type & ~vt_by_ref;
  if (type == vt_variant) {
    auto& place = *static_cast<ComVariant*>(target.pointer);
    ComVariant answer = to_com(value, door);
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
  const ComVariant answer = to_com(fitting, door);
  ComVariant old;
  old.type = type;
  const std::size_t size = type == vt_bool ? 2 : type == vt_i4 ? 4 : 8;
  std::memcpy(old.bits, target.pointer, size);
  std::memcpy(target.pointer, answer.bits, size);
  clear(old);
}

}  // namespace qto::server::com
