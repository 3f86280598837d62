#pragma once

#include <cstdint>
#include <utility>

#include "qto/automation/event.hpp"
#include "qto/automation/keyed_collection.hpp"
#include "qto/automation/object.hpp"
#include "qto/automation/variant.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/part_key.hpp"

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
  std::int32_t Count() const noexcept {
    Procedure proc("ModelParts", "Count[Get]");
    return static_cast<std::int32_t>(parts_.count());
  }
  /// By position from 1 or by key; null when no part matches.
  Ref<ModelPart> Item(const Variant& position_or_key);
  /// Removes by position or key. A part that is not there goes to the standard error handling.
  void Remove(const Variant& position_or_key);

  using Parts = KeyedCollection<ModelPart, PartKey>;
  /// A walk in insertion order that stays right while parts are added and removed. It holds the
  /// collection.
  class Pass {
   public:
    explicit Pass(Ref<ModelParts> list) : list_(std::move(list)), pass_(list_->new_enum()) {}
    ModelPart* next() noexcept { return pass_.next(); }
    ModelParts& list() const noexcept { return *list_; }

   private:
    Ref<ModelParts> list_;
    Parts::Pass pass_;
  };
  Pass NewEnum() { return Pass(Ref<ModelParts>(this)); }
  template <class Visit>
  void for_each(Visit&& visit) {
    Parts::Pass pass = new_enum();
    while (ModelPart* part = pass.next()) visit(*part);
  }

  // Inside the engine only

  /// Probe: the part under a key, or null.
  ModelPart* find(const PartKey& key) const noexcept { return parts_.find(key); }
  bool remove(const PartKey& key) { return parts_.remove(key); }

 private:
  Parts::Pass new_enum() {
    Procedure proc("ModelParts", "NewEnum");
    return Parts::Pass(parts_);
  }
  Parts parts_;
};

}  // namespace qto
