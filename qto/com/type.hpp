#pragma once

#include <cstdint>
#include <string_view>

namespace qto::server {

enum class Shape : std::uint8_t { none, boolean, number, text, variant, object, enumeration };

/// A type at the boundary. `name` is the class or enumeration; "" for an object of any class.
struct Type {
  Shape shape = Shape::none;
  std::string_view name;
};

}  // namespace qto::server
