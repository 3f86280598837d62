#pragma once

#include "qto/com/com.hpp"
#include "qto/server/enumerator.hpp"

namespace qto::server::com {

/// A collection's walk as clients hold it; the reference is the caller's.
EnumVariant* enumerator_face(Ref<Enumerator> walk);

}  // namespace qto::server::com
