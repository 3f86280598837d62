#include "qto/engine/part_graph.hpp"

#include <algorithm>
#include <array>
#include <new>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "qto/automation/apartment.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/model/range_block.hpp"

namespace qto {
namespace {

/// The parts of an apartment that are watched. With their thread the lost ones go as well.
struct Watched {
  std::vector<Ref<ModelPart>> parts;
  Watched() = default;
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;
  ~Watched() {
    try {
      release_lost();
    } catch (const std::bad_alloc&) {
      // A circle stays.
    }
  }
  void release_lost();
};

thread_local constinit ApartmentState<Watched> watched_of_thread;

std::vector<Ref<ModelPart>>& watched() { return watched_of_thread.get().parts; }

/// Direct precedents, and all of them where some were left out.
std::array<Ref<ModelParts>, 2> lists_of(ModelPart& part) {
  Ref<ModelParts> all;
  if (part.IntelligentDrillingUsed()) all = part.AllPrecedents();
  return {part.direct(), all == part.direct() ? nullptr : all};
}

/// Tells which watched parts somebody outside can still reach.
class Reachability {
 public:
  explicit Reachability(const std::vector<Ref<ModelPart>>& parts) {
    for (const auto& part : parts) counts_[part.get()] = 0;
    for (const auto& part : parts)
      for (const auto& list : lists_of(*part)) count_list(list);
    for (const auto& part : parts) {
      for (const auto& list : lists_of(*part))
        // One reference is this loop's own.
        if (list && list->ref_count() > holders_[list.get()] + 1) mark_items(*list);
      // One reference is the watch itself.
      if (part->ref_count() > counts_[part.get()] + 1) mark(part.get());
    }
    for (const auto& [block, holders] : block_holders_)
      if (block->ref_count() > holders) mark_made(*block);
    follow();
  }

  bool reaches(const ModelPart* part) const { return reached_.contains(part); }

 private:
  void count_list(const Ref<ModelParts>& list) {
    if (!list || holders_[list.get()]++ > 0) return;
    list->for_each_single([this](ModelPart& item) { count(item); });
    list->for_each_block([this](RangeBlock& block) {
      if (block_holders_[&block]++ == 0)
        block.for_each_made([this](ModelPart& item) { count(item); });
    });
  }
  void count(const ModelPart& item) {
    const auto known = counts_.find(&item);
    if (known != counts_.end()) ++known->second;
  }
  void mark(ModelPart* part) {
    if (counts_.contains(part) && reached_.try_emplace(part, true).second) open_.push_back(part);
  }
  void mark_items(ModelParts& list) {
    list.for_each_single([this](ModelPart& item) { mark(&item); });
    list.for_each_block([this](RangeBlock& block) { mark_made(block); });
  }
  void mark_made(RangeBlock& block) {
    if (reached_blocks_.insert(&block).second)
      block.for_each_made([this](ModelPart& item) { mark(&item); });
  }
  void follow() {
    while (!open_.empty()) {
      ModelPart* part = open_.back();
      open_.pop_back();
      for (const auto& list : lists_of(*part))
        if (list) mark_items(*list);
    }
  }

  std::unordered_map<const ModelPart*, std::uint32_t> counts_;    // references from watched lists
  std::unordered_map<const ModelParts*, std::uint32_t> holders_;  // watched parts per list
  std::unordered_map<RangeBlock*, std::uint32_t> block_holders_;  // watched lists per block
  std::unordered_map<const ModelPart*, bool> reached_;
  std::unordered_set<const RangeBlock*> reached_blocks_;
  std::vector<ModelPart*> open_;
};

}  // namespace

void watch_graph(const Ref<ModelPart>& start, ModelParts& parts) {
  watched().push_back(start);
  parts.for_each([](ModelPart& part) { watched().emplace_back(&part); });
}

void release_lost_graphs() noexcept {
  try {
    watched_of_thread.get().release_lost();
  } catch (const std::bad_alloc&) {
    // The next time.
  }
}

void Watched::release_lost() {
  if (parts.empty()) return;
  std::vector<Ref<ModelPart>> all;
  {
    // A part may have been watched by several drills; it is one reference here.
    std::unordered_map<ModelPart*, bool> once;
    for (const auto& part : parts)
      if (once.try_emplace(part.get(), true).second) all.push_back(part);
  }
  parts = std::move(all);
  const Reachability outside(parts);
  const auto lost = std::stable_partition(
      parts.begin(), parts.end(), [&](const auto& part) { return outside.reaches(part.get()); });
  all.assign(lost, parts.end());
  parts.erase(lost, parts.end());
  for (const auto& part : all) part->clear_precedents();
}

}  // namespace qto
