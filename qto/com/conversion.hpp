#pragma once

#include <string_view>
#include "qto/automation/variant.hpp"

namespace qto::com {

enum class Shape : std::uint8_t { none, boolean, number, text, variant, object, enumeration };

/// A type at the boundary. `name` is the class or enumeration; "" for an object of any class.
struct Type {
  Shape shape = Shape::none;
  std::string_view name;
};

enum class Conversion : std::uint8_t { done, mismatch, overflow };

/// Turns a client's value into one of the type, by the rules of automation: numbers, Booleans and
/// texts into each other where they read as such, whole numbers by rounding to even, Empty into 0,
/// False, "" or nothing. Never an error value, Null (but for no object) or an array.
Conversion convert(Variant& value, const Type& type);
/// The same for the argument at a position; throws CallFailure when it does not fit.
void convert_or_throw(Variant& value, const Type& type, std::uint32_t position);

}  // namespace qto::com
