#pragma once

#include "qto/model/model_parts.hpp"

namespace qto {

/// A name of several cells has no value of its own. Those of a list of which a cell holds an error
/// get HasError, so that the error is traced through the name.
void mark_names_of_errors(ModelParts& list);

}  // namespace qto
