#pragma once

#include "qto/automation/ref.hpp"

namespace qto {

class ModelParts;

/// Gives up a reference to a list. Lists released while another is being released wait for it, so
/// that a chain of parts of any depth is taken down by a loop.
void release_flat(Ref<ModelParts> list) noexcept;

}  // namespace qto
