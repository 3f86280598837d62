#pragma once

#include "qto/automation/variant.hpp"
#include "qto/com/type.hpp"

namespace qto::server {

enum class Conversion : std::uint8_t { done, mismatch, overflow };

/// Turns a client's value into one of the type, by the rules of automation: numbers, Booleans and
/// texts into each other where they read as such, whole numbers by rounding to even, Empty into 0,
/// False, "" or nothing. Never an error value, Null (but for no object) or an array.
Conversion convert(Variant& value, const Type& type);
/// The same for the argument at a position; throws CallFailure when it does not fit.
void convert_or_throw(Variant& value, const Type& type, std::uint32_t position);

}  // namespace qto::server
