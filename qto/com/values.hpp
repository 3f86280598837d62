#pragma once

#include <string_view>

#include "qto/automation/variant.hpp"
#include "qto/com/memory.hpp"

namespace qto::com {

/// An object of ours that stands for one of another server.
class RemoteObject {
 public:
  virtual ~RemoteObject() = default;
  /// The object that it stands for; the reference is the caller's. Null when it cannot be reached.
  virtual Unknown* remote_reference() = 0;
};

/// The marshaler through which objects cross: servers show wrappers, clients hold proxies.
class ObjectMarshaler {
 public:
  virtual ~ObjectMarshaler() = default;
  /// What the other side gets of an object; the reference is the caller's. Throws CallFailure when
  /// the object cannot be shown.
  virtual Unknown* marshal(const Ref<Object>& object) = 0;
  /// The object that a reference of the other side stands for. Throws CallFailure with
  /// type_mismatch when there is none.
  virtual Ref<Object> unmarshal(Unknown& unknown) = 0;
};

/// A counted text with memory of its own; free_text gives it back. Null is an empty text.
Text make_text(std::string_view utf8);
std::string read_text(const char16_t* text);

/// A variant that owns its text, array or reference.
ComVariant to_com(const Variant& value, ObjectMarshaler& marshaler);
/// The bytes that a value of a plain type takes. Throws CallFailure for a type that cannot cross.
std::size_t size_of_value(std::uint16_t type);
/// The value that a client passes, what references point to included. Throws CallFailure with
/// type_mismatch for a type that cannot cross.
Variant from_com(const ComVariant& variant, ObjectMarshaler& marshaler);
/// Writes an answer to where a by-reference variant points; does nothing for any other. The old
/// text or reference there is released.
void write_back(ComVariant& target, const Variant& value, ObjectMarshaler& marshaler);

}  // namespace qto::com
