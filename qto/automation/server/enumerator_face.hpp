#pragma once

#include "qto/automation/com/com.hpp"
#include "qto/automation/server/enumerator.hpp"

namespace qto::server::com {

/// A collection's walk as clients hold it; the reference is the caller's.
EnumVariant* enumerator_face(Ref<Enumerator> walk);

}  // namespace qto::server::com
