#include "cli/output/displayed.hpp"

namespace qto::cli {
Ref<ModelPart> displayed(ModelPart& part) {
  Ref<ModelPart> shown(&part);
  if (part.is_range() && part.sheet_record() && !part.IsUnknown() && !part.ResultsSet()) {
    shown = make_ref<ModelPart>();
    shown->create_cell(part.sheet_record(), part.cell());
  }
  shown->SetResultsValues();
  return shown;
}

}  // namespace qto::cli
