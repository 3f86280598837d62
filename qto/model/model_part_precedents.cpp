#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/model/release_flat.hpp"

namespace qto {

ModelPart::~ModelPart() {
  // A chain of a million parts must not be released by recursion.
  release_flat(std::move(direct_precedents_));
  if (rare_) release_flat(std::move(rare_->all_precedents));
}

bool ModelPart::HasConstant() const noexcept {
  Procedure proc("ModelPart", "HasConstant[Get]");
  return formula_contains_constant_ != qtoNoConstantInFormula || has(constant);
}

bool ModelPart::CheckedForPrecedents() {
  Procedure proc("ModelPart", "CheckedForPrecedents[Get]");
  if (has(checked_for_precedents)) return true;
  std::string_view formula;
  if (!proc.step([&] { formula = read_formula_again(); })) return has(checked_for_precedents);
  if (formula.empty() || formula.front() != '=') {
    set(checked_for_precedents, true);
    set(constant, true);
    clear_precedents();
  }
  return has(checked_for_precedents);
}

void ModelPart::put_CheckedForPrecedents(bool value) {
  Procedure proc("ModelPart", "CheckedForPrecedents[Let]");
  set(checked_for_precedents, value);
  if (value) return;
  clear_precedents();
  set(results_set, false);
}

qtoContainsConstant ModelPart::FormulaContainsConstant() const noexcept {
  Procedure proc("ModelPart", "FormulaContainsConstant[Get]");
  return formula_contains_constant_;
}

void ModelPart::put_FormulaContainsConstant(qtoContainsConstant value) {
  Procedure proc("ModelPart", "FormulaContainsConstant[Let]");
  if (value < qtoNoConstantInFormula || value > qtoFormulaContainsConstZeroOrOne)
    throw AutomationError(ErrorNumber::out_of_range);
  formula_contains_constant_ = value;
}

void ModelPart::putref_DirectPrecedents(Ref<ModelParts> list) {
  Procedure proc("ModelPart", "DirectPrecedents[Set]");
  direct_precedents_ = std::move(list);
}

Ref<ModelParts> ModelPart::AllPrecedents() {
  Procedure proc("ModelPart", "AllPrecedents[Get]");
  if (IntelligentDrillingUsed()) return rare().all_precedents;
  if (rare_) rare_->all_precedents = nullptr;
  return direct_precedents_;
}

void ModelPart::putref_AllPrecedents(Ref<ModelParts> list) {
  Procedure proc("ModelPart", "AllPrecedents[Set]");
  if (list || rare_) rare().all_precedents = std::move(list);
}

void ModelPart::clear_precedents() {
  Procedure proc("ModelPart", "clear_precedents");
  direct_precedents_ = nullptr;
  putref_AllPrecedents(nullptr);
}

}  // namespace qto
