#include "qto/model/model_parts.hpp"

#include <algorithm>
#include <limits>

#include "qto/automation/collection_error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/failure.hpp"

namespace qto {

void ModelParts::AddExisting(Ref<ModelPart>& part) {
  procedure("ModelParts", "AddExisting", [this, &part] { add(part); });
}

void ModelParts::add(Ref<ModelPart>& part) {
  BeforeItemAdded(part);
  if (!part || in_some_block(*part)) return;
  // A part whose key cannot be told, which was reported, is not added.
  (void)host::tried([&] { parts_.add(part->Key(), part); });
}

std::int32_t ModelParts::Count() const noexcept {
  return procedure("ModelParts", "Count[Get]", [this] { return size(); });
}

std::int32_t ModelParts::size() const noexcept {
  auto count = static_cast<std::int64_t>(parts_.count());
  if (blocks_)
    for (const Entry& entry : *blocks_) count += entry.block->count();
  return static_cast<std::int32_t>(
      std::min<std::int64_t>(count, std::numeric_limits<std::int32_t>::max()));
}

Ref<ModelPart> ModelParts::Item(const Variant& position_or_key) {
  Procedure proc("ModelParts", "Item[Get]");
  if (position_or_key.is_text())
    return Ref<ModelPart>(find(PartKey::of_text(position_or_key.text())));
  const auto position = position_of(position_or_key);
  return position ? Ref<ModelPart>(at(*position)) : nullptr;
}

void ModelParts::Remove(const Variant& position_or_key) {
  Procedure proc("ModelParts", "Remove");
  (void)proc.step([&] {
    bool removed = false;
    if (position_or_key.is_text()) {
      removed = remove(PartKey::of_text(position_or_key.text()));
    } else if (const auto position = position_of(position_or_key)) {
      ModelPart* part = at(*position);
      removed = part && remove(part->Key());
    }
    if (!removed) throw_no_such_item();
  });
}

/// Clients count through lists, so a position in a block is found without walking to it.
ModelPart* ModelParts::at(std::size_t position) {
  if (!blocks_ || position == 0) return parts_.at(position);
  if (has_gaps()) {
    Pass pass = NewEnum();
    ModelPart* part = pass.next();
    while (part && --position > 0) part = pass.next();
    return part;
  }
  const std::size_t index = position - 1;
  std::size_t in_blocks = 0;
  for (const Entry& entry : *blocks_) {
    const std::size_t first = entry.before + in_blocks;
    const auto size = static_cast<std::size_t>(entry.block->size());
    if (index < first) break;
    if (index < first + size) return entry.block->at(static_cast<std::int64_t>(index - first));
    in_blocks += size;
  }
  return parts_.at(position - in_blocks);
}

bool ModelParts::has_gaps() const noexcept {
  return parts_.places() != parts_.count() || std::ranges::any_of(*blocks_, [](const Entry& entry) {
           return entry.block->count() != entry.block->size();
         });
}

ModelPart* ModelParts::find(const PartKey& key) const {
  if (ModelPart* single = parts_.find(key)) return single;
  if (!blocks_) return nullptr;
  for (const Entry& entry : *blocks_)
    if (ModelPart* part = entry.block->find(key)) return part;
  return nullptr;
}

bool ModelParts::remove(const PartKey& key) {
  if (!blocks_) return parts_.remove(key);
  if (parts_.remove(key)) return true;
  for (Entry& entry : *blocks_) {
    if (!entry.block->find(key)) continue;
    // The other lists keep the part.
    if (entry.block->ref_count() > 1) entry.block = entry.block->clone();
    return entry.block->remove(key);
  }
  return false;
}

void ModelParts::replace(ModelPart& part, Ref<ModelPart> by) {
  if (blocks_)
    for (const Entry& entry : *blocks_)
      if (entry.block->shows(part)) return entry.block->replace(part, by);
  parts_.remove(part.Key());
  AddExisting(by);
}

std::optional<Rect> ModelParts::held_of(const SheetRecord& sheet, const Rect& rect) {
  if (blocks_)
    for (const Entry& entry : *blocks_)
      if (entry.block->sheet()->prefix == sheet.prefix)
        if (const auto common = entry.block->rect().intersect(rect)) return common;
  KeyedCollection<ModelPart, PartKey>::Pass pass(parts_);
  while (const ModelPart* part = pass.next()) {
    const auto& record = part->sheet_record();
    if (record && record->prefix == sheet.prefix && rect.contains(part->cell()))
      return Rect::cell(part->cell());
  }
  return std::nullopt;
}

void ModelParts::append_block(const Ref<RangeBlock>& block) {
  if (!blocks_) {
    blocks_ = std::make_unique<Entries>();
    parts_.pin_places();
  }
  blocks_->push_back({parts_.places(), block});
}

bool ModelParts::in_some_block(const ModelPart& part) const noexcept {
  return blocks_ && std::ranges::any_of(
                        *blocks_, [&](const Entry& entry) { return entry.block->shows(part); });
}

bool ModelParts::any_unknown() {
  Pass pass = NewEnum();
  while (const ModelPart* part = pass.next_single())
    if (part->is_unknown()) return true;
  return false;
}

bool ModelParts::any_error(std::uint64_t drill) {
  Pass pass = NewEnum();
  while (ModelPart* part = pass.next_single())
    if (part->HasError()) return true;
  return blocks_ && std::ranges::any_of(*blocks_, [&](const Entry& entry) {
           return entry.block->any_error(drill);
         });
}

Ref<ModelParts> ModelParts::copy() {
  auto list = make_ref<ModelParts>();
  Pass pass = NewEnum();
  std::size_t block = 0;
  const auto add_blocks_before = [&](std::size_t place) {
    for (; blocks_ && block < blocks_->size() && (*blocks_)[block].before <= place; ++block)
      list->append_block((*blocks_)[block].block);
  };
  for (std::size_t place = 0;; place = pass.single_place()) {
    add_blocks_before(place);
    ModelPart* part = pass.next_single();
    if (!part) break;
    Ref<ModelPart> shared(part);
    list->AddExisting(shared);
  }
  return list;
}

ModelParts::Pass::Pass(Ref<ModelParts> list) : list_(std::move(list)), pass_(list_->parts_) {
  Procedure proc("ModelParts", "NewEnum");
}

bool ModelParts::Pass::in_block() const noexcept {
  const auto& blocks = list_->blocks_;
  return blocks && block_ < blocks->size() && (*blocks)[block_].before <= pass_.place();
}

/// Null at the end of the block, and the pass stands behind it.
ModelPart* ModelParts::Pass::next_in_block() {
  RangeBlock& block = *(*list_->blocks_)[block_].block;
  while (place_ < block.size())
    if (ModelPart* part = block.at(place_++)) return part;
  ++block_;
  place_ = 0;
  return nullptr;
}

void ModelParts::Pass::skip_blocks() noexcept {
  for (; in_block(); ++block_) place_ = 0;
}

ModelPart* ModelParts::Pass::next() {
  for (;;) {
    while (in_block())
      if (ModelPart* part = next_in_block()) return part;
    if (ModelPart* part = pass_.next()) return part;
    // Holes at the end were passed over, behind which a block may stand.
    if (!in_block()) return nullptr;
  }
}

ModelPart* ModelParts::Pass::next_for(std::uint64_t drill, bool& met_cycle) {
  for (;;) {
    while (in_block()) {
      const Ref<RangeBlock> block = (*list_->blocks_)[block_].block;
      if (block->walked_by != drill) {
        block->walked_by = drill;
        block->walked_to = 0;
      }
      // Another pass of this drill stands in the block: the cell there leads back to the block.
      if (place_ < block->walked_to && block->walked_to < block->size()) met_cycle = true;
      place_ = std::max(place_, block->walked_to);
      ModelPart* part = next_in_block();
      block->walked_to = part ? place_ : block->size();
      if (part) return part;
    }
    if (ModelPart* part = pass_.next()) return part;
    if (!in_block()) return nullptr;
  }
}

}  // namespace qto
