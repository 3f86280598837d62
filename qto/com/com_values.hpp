#pragma once

#include <string_view>

#include "qto/automation/variant.hpp"
#include "qto/com/memory.hpp"

namespace qto::server::com {

/// The door through which objects cross: servers show faces, clients hold proxies.
class ObjectDoor {
 public:
  virtual ~ObjectDoor() = default;
  /// What the other side gets of an object; the reference is the caller's. Throws CallFailure when
  /// the object cannot be shown.
  virtual Unknown* show(const Ref<Object>& object) = 0;
  /// The object that a reference of the other side stands for. Throws CallFailure with
  /// type_mismatch when there is none.
  virtual Ref<Object> take(Unknown& unknown) = 0;
};

/// A counted text with memory of its own; free_text gives it back. Null is an empty text.
Text make_text(std::string_view utf8);
std::string read_text(const char16_t* text);

/// A variant that owns its text, array or reference.
ComVariant to_com(const Variant& value, ObjectDoor& door);
/// The bytes that a value of a plain type takes. Throws CallFailure for a type that cannot cross.
std::size_t size_of_value(std::uint16_t type);
/// The value that a client passes, what references point to included. Throws CallFailure with
/// type_mismatch for a type that cannot cross.
Variant from_com(const ComVariant& variant, ObjectDoor& door);
/// Writes an answer to where a by-reference variant points; does nothing for any other. The old
/// text or reference there is released.
void write_back(ComVariant& target, const Variant& value, ObjectDoor& door);

}  // namespace qto::server::com
