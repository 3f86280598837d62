#include "qto/model/release_flat.hpp"

#include <utility>
#include <vector>

#include "qto/model/model_parts.hpp"

namespace qto {

void release_flat(Ref<ModelParts> list) noexcept {
  if (!list) return;
  if (list->ref_count() > 1) return;
  static std::vector<Ref<ModelParts>> waiting;
  static bool draining = false;
  waiting.push_back(std::move(list));
  if (std::exchange(draining, true)) return;
  while (!waiting.empty()) {
    const Ref<ModelParts> last = std::move(waiting.back());
    waiting.pop_back();
  }
  waiting.shrink_to_fit();
  draining = false;
}

}  // namespace qto
