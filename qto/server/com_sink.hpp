#pragma once

#include "qto/com/com.hpp"
#include "qto/server/table.hpp"

namespace qto::server::com {

/// Passes a class's events on to a client's sink, whose reference it takes over. A sink that fails
/// leaves the presets.
Ref<EventSink> sink_of(const ClassTable& table, Dispatch* client);

}  // namespace qto::server::com
