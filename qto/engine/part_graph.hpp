#pragma once

#include "qto/automation/ref.hpp"

namespace qto {

class ModelPart;
class ModelParts;

/// Parts are shared by counting, and a drill through circular references (allowed with a depth
/// limit) leaves parts that hold each other. Such graphs are watched: once no client holds any of
/// their parts or lists, their lists are dropped.

/// Watches the parts of a drill that met a circle.
void watch_graph(const Ref<ModelPart>& start, ModelParts& parts);
/// Takes down every watched part that nobody outside can reach any more.
void release_lost_graphs() noexcept;

}  // namespace qto
