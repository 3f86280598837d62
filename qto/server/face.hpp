#pragma once

#include "qto/automation/object.hpp"
#include "qto/com/com_values.hpp"

namespace qto::server::com {

/// What a client holds of an object: IDispatch over its table, connection points for its events, or
/// an enumerator. An object has one face at a time; one that stands for another server's object has
/// that as its face. The reference is the caller's.
Unknown* face_of(const Ref<Object>& object);

/// The object behind a client's reference: this system's own, or what the module puts in the place
/// of another server's. Throws CallFailure with type_mismatch where it puts nothing.
Ref<Object> object_behind(Unknown& unknown);

/// The door of a server: objects appear as faces.
ObjectDoor& faces_door();
/// As a client gets it: enumerators are no dispatch interfaces.
ComVariant to_com(const Variant& value);
inline Variant from_com(const ComVariant& variant) { return from_com(variant, faces_door()); }
inline void write_back(ComVariant& target, const Variant& value) {
  write_back(target, value, faces_door());
}

}  // namespace qto::server::com
