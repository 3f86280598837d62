#pragma once

#include "qto/host/range.hpp"

namespace qto {

/// Selects the range and brings it to the middle of the active window, which becomes that of its
/// sheet. False when the host refuses a step.
bool show_range(const Ref<host::Range>& range);

}  // namespace qto
