#pragma once

#include <cstddef>
#include <optional>

#include "qto/automation/variant.hpp"

/// The failures of the automation run time's keyed collection, under the numbers that it gives
/// them.
namespace qto {

/// 457: "This key is already associated with an element of this collection".
[[noreturn]] void throw_key_present();
/// 9 "Subscript out of range": no element at that position or under that key.
[[noreturn]] void throw_no_such_item();
/// 91: an object was expected and none was given.
[[noreturn]] void throw_no_object();

/// The position that a value names, when it is a number of at least 1.
std::optional<std::size_t> position_of(const Variant& value);

}  // namespace qto
