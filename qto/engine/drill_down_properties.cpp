#include "qto/diagnostics/procedure.hpp"
#include "qto/engine/drill_down.hpp"

/// Properties that give and take plain fields.
namespace qto {

const Ref<ModelParts>& DrillDown::InputCells() const noexcept {
  Procedure proc("DrillDown", "InputCells[Get]");
  return input_cells_;
}

const Ref<ModelParts>& DrillDown::ErrorCells() const noexcept {
  Procedure proc("DrillDown", "ErrorCells[Get]");
  return error_cells_;
}

const Ref<ModelPart>& DrillDown::StartModelPart() const noexcept {
  Procedure proc("DrillDown", "StartModelPart[Get]");
  return start_part_;
}

const Ref<Object>& DrillDown::StartUnderlyingObject() const noexcept {
  Procedure proc("DrillDown", "StartUnderlyingObject[Get]");
  return start_object_;
}

std::int32_t DrillDown::MaximumDepth() const noexcept {
  Procedure proc("DrillDown", "MaximumDepth[Get]");
  return maximum_depth_;
}

const Ref<ModelParts>& DrillDown::PartsAnalysed() const noexcept {
  Procedure proc("DrillDown", "PartsAnalysed[Get]");
  return parts_analysed_;
}

std::int32_t DrillDown::MaxItems() const noexcept {
  Procedure proc("DrillDown", "MaxItems[Get]");
  return maximum_items_;
}

const Ref<qto::DrillOptions>& DrillDown::DrillOptions() const noexcept {
  Procedure proc("DrillDown", "DrillOptions[Get]");
  return options_;
}

bool DrillDown::IgnoreConstantIfZeroOrOne() const noexcept {
  Procedure proc("DrillDown", "IgnoreConstantIfZeroOrOne[Get]");
  return ignore_zero_or_one_;
}

bool DrillDown::ExceededMaxItems() const noexcept {
  Procedure proc("DrillDown", "ExceededMaxItems[Get]");
  return exceeded_;
}

const Ref<ModelParts>& DrillDown::OpaqueCells() const noexcept {
  Procedure proc("DrillDown", "OpaqueCells[Get]");
  return opaque_cells_;
}

const Ref<ModelParts>& DrillDown::Circles() const noexcept {
  Procedure proc("DrillDown", "Circles[Get]");
  return circles_;
}

void DrillDown::put_IgnoreConstantIfZeroOrOne(bool ignore) noexcept {
  Procedure proc("DrillDown", "IgnoreConstantIfZeroOrOne[Let]");
  ignore_zero_or_one_ = ignore;
}

const Ref<LinkedBooks>& DrillDown::BooksOpened() const {
  Procedure proc("DrillDown", "BooksOpened[Get]");
  return context_->BooksOpened();
}

const Ref<LinkedBooks>& DrillDown::BooksNotOpened() const {
  Procedure proc("DrillDown", "BooksNotOpened[Get]");
  return context_->BooksNotOpened();
}

}  // namespace qto
