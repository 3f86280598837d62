#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "qto/model/model_part.hpp"

namespace qto::cli {

/// The parts that a walk through a tree has met. They are told apart by identity, for a drill makes
/// one part of every item; only a start that is met again through a circle comes as a second part.
class PartSet {
 public:
  explicit PartSet(ModelPart& start) : start_(start), slots_(64) {}
  /// False when the part was met before.
  bool insert(ModelPart* part) {
    if (part != &start_ && part->Key() == start_.Key()) return false;
    if ((count_ + 1) * 2 > slots_.size()) grow();
    const ModelPart*& slot = place(part);
    if (slot) return false;
    slot = part;
    ++count_;
    return true;
  }
  bool contains(const ModelPart* part) const noexcept { return slot_of(part) == part; }
  std::size_t count() const noexcept { return count_; }

 private:
  const ModelPart* slot_of(const ModelPart* part) const noexcept {
    return const_cast<PartSet*>(this)->place(part);
  }
  const ModelPart*& place(const ModelPart* part) noexcept {
    const auto bits = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(part));
    std::size_t i = (bits * 0x9E3779B97F4A7C15u >> 20) & (slots_.size() - 1);
    while (slots_[i] && slots_[i] != part) i = (i + 1) & (slots_.size() - 1);
    return slots_[i];
  }
  void grow() {
    std::vector<const ModelPart*> before(slots_.size() * 2);
    before.swap(slots_);
    for (const ModelPart* part : before)
      if (part) place(part) = part;
  }
  ModelPart& start_;
  std::vector<const ModelPart*> slots_;
  std::size_t count_ = 0;
};

}  // namespace qto::cli
