#pragma once

#include "qto/automation/object.hpp"
#include "qto/automation/server/com.hpp"

namespace qto::server::com {

/// What a client holds of an object: IDispatch over its table, connection points for its events, or
/// an enumerator. An object has one face at a time. The reference is the caller's.
Unknown* face_of(const Ref<Object>& object);

/// The object behind a client's reference. Throws CallFailure with type_mismatch when it is not one
/// of this system's.
Ref<Object> object_behind(Unknown& unknown);

}  // namespace qto::server::com
