#pragma once

#include "cli/output/json_writer.hpp"
#include "cli/terminal/progress.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// The members "parts" and "precedents" of a tree: every part once, the start first, the others in
/// the order in which a depth-first walk meets them.
void write_tree(JsonWriter& json, const Ref<ModelPart>& start, Progress& progress);

}  // namespace qto::cli
