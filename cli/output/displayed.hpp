#pragma once

#include "qto/automation/ref.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// The part with its display values (title, text, local address) computed. Of a cell it is a copy
/// that nobody else holds: display values take more room than all else in a part, and a tree may
/// have a million. What the drill found out (precedents, constants) is in `part` only.
Ref<ModelPart> displayed(ModelPart& part);

}  // namespace qto::cli
