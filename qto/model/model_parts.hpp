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
    /// As next(), without the blocks that the drill has walked already.
    ModelPart* next_for(std::uint64_t drill);
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

  /// Appends the cells of a large range; false, and nothing is added, when some of them are in the
  /// list already or might be.
  bool add_block(const Ref<RangeBlock>& block);
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
  /// Holds every part by itself from now on.
  void dissolve_blocks();

 private:
  struct Entry {
    std::size_t before;  // the place of the first single part behind the block
    Ref<RangeBlock> block;
  };
  using Entries = std::vector<Entry>;

  void add(Ref<ModelPart>& part);
  bool in_some_block(const ModelPart& part) const noexcept;
  bool meets_a_single(const RangeBlock& block);
  bool has_gaps() const noexcept;
  ModelPart* at(std::size_t position);

  KeyedCollection<ModelPart, PartKey> parts_;
  std::unique_ptr<Entries> blocks_;  // nearly all lists have none
};

}  // namespace qto
