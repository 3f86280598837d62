#include "qto/model/model_parts.hpp"

#include "qto/automation/collection_error.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto {

void ModelParts::AddExisting(Ref<ModelPart>& part) {
  Procedure proc("ModelParts", "AddExisting");
  BeforeItemAdded(part);
  if (!part) return;
  try {
    parts_.add(part->Key(), part);
  } catch (const std::exception&) {
    // A part whose key cannot be told is not added.
  }
}

Ref<ModelPart> ModelParts::Item(const Variant& position_or_key) {
  Procedure proc("ModelParts", "Item[Get]");
  if (position_or_key.is_text())
    return Ref<ModelPart>(parts_.find(PartKey::of_text(position_or_key.text())));
  const auto position = position_of(position_or_key);
  return position ? Ref<ModelPart>(parts_.at(*position)) : nullptr;
}

void ModelParts::Remove(const Variant& position_or_key) {
  Procedure proc("ModelParts", "Remove");
  (void)proc.step([&] {
    bool removed = false;
    if (position_or_key.is_text())
      removed = parts_.remove(PartKey::of_text(position_or_key.text()));
    else if (const auto position = position_of(position_or_key))
      removed = parts_.remove_at(*position);
    if (!removed) throw_no_such_item();
  });
}

}  // namespace qto
