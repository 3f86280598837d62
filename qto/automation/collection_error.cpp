#include "qto/automation/collection_error.hpp"

#include <cmath>

#include "qto/automation/error.hpp"

namespace qto {

void throw_key_present() {
  throw NumberedFailure(457, "This key is already associated with an element of this collection");
}

void throw_no_such_item() { throw NumberedFailure(9, "Subscript out of range"); }

void throw_no_object() { throw NumberedFailure(91, "Object variable not set"); }

std::optional<std::size_t> position_of(const Variant& value) {
  if (const auto* whole = value.get_if<std::int32_t>())
    return *whole >= 1 ? std::optional<std::size_t>(*whole) : std::nullopt;
  if (const auto* number = value.get_if<double>()) {
    const double rounded = std::nearbyint(*number);
    if (rounded >= 1 && rounded <= 2147483647.0) return static_cast<std::size_t>(rounded);
  }
  return std::nullopt;
}

}  // namespace qto
