#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "qto/automation/event.hpp"
#include "qto/automation/keyed_collection.hpp"
#include "qto/automation/object.hpp"
#include "qto/automation/variant.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/part_key.hpp"
#include "qto/model/range_block.hpp"

namespace qto {

/// Parts in insertion order, each under its UniqueKey (letter case ignored): the form in which
/// every result of the engine is handed out. A part may be in several collections at once.
class ModelParts : public Object {
 public:
  std::string_view TypeName() const noexcept override { return "ModelParts"; }

  /// Raised before a part is added. A handler may assign another part, which then takes its place
  /// (also in the caller's variable), or none, and nothing is added.
  Event<Ref<ModelPart>&> BeforeItemAdded;

  /// Appends a part; one whose key is present already is not added, silently.
  void AddExisting(Ref<ModelPart>& part);
  std::int32_t Count() const noexcept;
  /// By position from 1 or by key; null when no part matches.
  Ref<ModelPart> Item(const Variant& position_or_key);
  /// Removes by position or key. A part that is not there goes to the standard error handling.
  void Remove(const Variant& position_or_key);

  /// A walk in insertion order that stays right while parts are added and removed. It holds the
  /// collection.
  class Pass {
   public:
    explicit Pass(Ref<ModelParts> list);
    ModelPart* next();
    /// The next part outside blocks: only there can one be unknown.
    ModelPart* next_single() noexcept { return pass_.next(); }
    std::size_t single_place() const noexcept { return pass_.place(); }
    /// As next(), without the cells of blocks that the drill has walked already; tells when it
    /// passes over one from which the walk came.
    ModelPart* next_for(std::uint64_t drill, bool& met_cycle);
    /// Leaves the block in which the pass stands, and those that follow at once.
    void skip_blocks() noexcept;
    ModelParts& list() const noexcept { return *list_; }

   private:
    bool in_block() const noexcept;
    ModelPart* next_in_block();

    Ref<ModelParts> list_;
    KeyedCollection<ModelPart, PartKey>::Pass pass_;
    std::size_t block_ = 0;
    std::int64_t place_ = 0;
  };
  Pass NewEnum() { return Pass(Ref<ModelParts>(this)); }
  /// for (ModelPart& part : *list); parts may be added and removed in the loop.
  PassIterator<ModelPart, Pass> begin() { return PassIterator<ModelPart, Pass>(NewEnum()); }
  std::default_sentinel_t end() const noexcept { return {}; }
  template <class Visit>
  void for_each(Visit&& visit) {
    Pass pass = NewEnum();
    while (ModelPart* part = pass.next()) visit(*part);
  }

  // Inside the engine only

  /// Appends the cells of a large range, none of which is in the list.
  void append_block(const Ref<RangeBlock>& block);
  /// Some cells of the range that are in the list already; nothing when none is.
  std::optional<Rect> held_of(const SheetRecord& sheet, const Rect& rect);
  /// As Count().
  std::int32_t size() const noexcept;
  /// Probe: the part under a key, or null.
  ModelPart* find(const PartKey& key) const;
  bool remove(const PartKey& key);
  /// Puts the part that stands for the same item in all lists in the place of another, at the end
  /// of the list; inside a block, where the other stood.
  void replace(ModelPart& part, Ref<ModelPart> by);
  bool any_unknown();
  bool any_error(std::uint64_t drill);
  /// The same parts in the same order; none is made for it.
  Ref<ModelParts> copy();
  template <class Visit>
  void for_each_single(Visit&& visit) {
    Pass pass = NewEnum();
    while (ModelPart* part = pass.next_single()) visit(*part);
  }
  template <class Visit>
  void for_each_block(Visit&& visit) const {
    if (!blocks_) return;
    for (const Entry& entry : *blocks_) visit(*entry.block);
  }

 private:
  struct Entry {
    std::size_t before;  // the place of the first single part behind the block
    Ref<RangeBlock> block;
  };
  using Entries = std::vector<Entry>;

  void add(Ref<ModelPart>& part);
  bool in_some_block(const ModelPart& part) const noexcept;
  bool has_gaps() const noexcept;
  ModelPart* at(std::size_t position);

  KeyedCollection<ModelPart, PartKey> parts_;
  std::unique_ptr<Entries> blocks_;  // nearly all lists have none
};

}  // namespace qto
