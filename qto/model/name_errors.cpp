#include "qto/model/name_errors.hpp"

#include "qto/host/host.hpp"

namespace qto {
namespace {

bool holds_error(const host::Range& range) {
  const auto sheet = range.Worksheet();
  const auto cells = range.block().intersect(sheet->UsedRange()->block());
  if (!cells) return false;
  for (CellPos at = cells->first; at.row <= cells->last.row; ++at.row)
    for (at.column = cells->first.column; at.column <= cells->last.column; ++at.column)
      if (sheet->cell_value(at).is_error()) return true;
  return false;
}

bool refers_to_error(ModelPart& part) {
  const auto name = ref_cast<host::DefinedName>(part.UnderlyingObject());
  if (!name) return false;
  const auto parent = name->Parent();
  const auto book = ref_cast<host::Workbook>(parent);
  const auto sheet = book ? book->Worksheets(1) : ref_cast<host::Worksheet>(parent);
  const Variant value = sheet->Evaluate(part.Formula());
  if (const auto range = ref_cast<host::Range>(value.object())) return holds_error(*range);
  if (!value.is_array()) return value.is_error();
  const VariantArray& array = value.array();
  for (std::int32_t row = 1; row <= array.rows(); ++row)
    for (std::int32_t column = 1; column <= array.columns(); ++column)
      if (array.at(row, column).is_error()) return true;
  return false;
}

}  // namespace

void mark_names_of_errors(ModelParts& list) {
  ModelParts::Pass pass{Ref<ModelParts>(&list)};
  while (ModelPart* part = pass.next_single())
    if (part->is_name() && !part->is_unknown() && !part->HasError() && refers_to_error(*part))
      part->put_HasError(true);
}

}  // namespace qto
