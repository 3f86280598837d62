#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/editing/cell_edit.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"

namespace qto::embedded {

void RangeObject::put_value(const Variant& value) {
  write_value(sheet_->open(), sheet_->sheet(), blocks(), value);
}

void RangeObject::put_Formula(std::string_view formula) {
  write_typed(sheet_->open(), sheet_->sheet(), blocks(), formula);
}

void RangeObject::put_FormulaArray(std::string_view formula) {
  if (more_) fail("An array formula fills one block");
  write_array_formula(sheet_->open(), sheet_->sheet(), block_, formula);
}

void RangeObject::put_NumberFormat(std::string_view code) {
  write_number_format(sheet_->open(), sheet_->sheet(), blocks(), code);
}

}  // namespace qto::embedded
