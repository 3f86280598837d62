#include "cli/displayed.hpp"

#include "qto/host/host.hpp"

namespace qto::cli {
namespace {

Ref<host::Range> cell_of(ModelPart& part) {
  if (part.ObjectType() != "Range" || part.IsUnknown() || part.ResultsSet()) return nullptr;
  const auto sheet = ref_cast<host::Worksheet>(part.Sheet());
  return sheet ? sheet->find_range(part.AddressShort()) : nullptr;
}

}  // namespace

Ref<ModelPart> displayed(ModelPart& part) {
  Ref<ModelPart> shown(&part);
  if (const auto cell = cell_of(part)) {
    shown = make_ref<ModelPart>();
    shown->Create(cell, "Range");
  }
  shown->SetResultsValues();
  return shown;
}

}  // namespace qto::cli
