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
  return procedure("ModelPart", "HasConstant[Get]", [this] {
    return formula_contains_constant_ != qtoNoConstantInFormula || has(constant);
  });
}

bool ModelPart::CheckedForPrecedents() {
  return procedure("ModelPart", "CheckedForPrecedents[Get]", [this](StandardHandling& proc) {
    if (has(checked_for_precedents)) return true;
    std::string_view formula;
    if (!proc.step([&] { formula = read_formula_again(); })) return has(checked_for_precedents);
    if (formula.empty() || formula.front() != '=') {
      set(checked_for_precedents, true);
      set(constant, true);
      clear_precedents();
    }
    return has(checked_for_precedents);
  });
}

void ModelPart::put_CheckedForPrecedents(bool value) {
  procedure("ModelPart", "CheckedForPrecedents[Let]", [this, value] { set_checked(value); });
}

void ModelPart::set_checked(bool value) {
  set(checked_for_precedents, value);
  if (value) return;
  clear_precedents();
  set(results_set, false);
}

qtoContainsConstant ModelPart::FormulaContainsConstant() const noexcept {
  return procedure("ModelPart", "FormulaContainsConstant[Get]", [this] { return constants(); });
}

std::string ModelPart::DrillRemark() const {
  Procedure proc("ModelPart", "DrillRemark[Get]");
  return rare().remark;
}

void ModelPart::add_remark(std::string_view text) {
  std::string& remark = rare().remark;
  if (remark.find(text) != std::string::npos) return;
  if (!remark.empty()) remark += "; ";
  remark += text;
}

void ModelPart::put_FormulaContainsConstant(qtoContainsConstant value) {
  Procedure proc("ModelPart", "FormulaContainsConstant[Let]");
  if (value < qtoNoConstantInFormula || value > qtoFormulaContainsConstZeroOrOne)
    throw AutomationError(ErrorNumber::out_of_range);
  formula_contains_constant_ = value;
}

void ModelPart::putref_DirectPrecedents(Ref<ModelParts> list) {
  procedure("ModelPart", "DirectPrecedents[Set]", [this, &list] { set_direct(std::move(list)); });
}

Ref<ModelParts> ModelPart::AllPrecedents() {
  return procedure("ModelPart", "AllPrecedents[Get]", [this] {
    if (IntelligentDrillingUsed()) return rare().all_precedents;
    if (rare_) rare_->all_precedents = nullptr;
    return direct_precedents_;
  });
}

void ModelPart::putref_AllPrecedents(Ref<ModelParts> list) {
  procedure("ModelPart", "AllPrecedents[Set]", [this, &list] { set_all(std::move(list)); });
}

void ModelPart::set_direct(Ref<ModelParts> list) { direct_precedents_ = std::move(list); }

void ModelPart::set_all(Ref<ModelParts> list) {
  if (list || rare_) rare().all_precedents = std::move(list);
}

void ModelPart::clear_precedents() {
  procedure("ModelPart", "clear_precedents", [this] {
    set_direct(nullptr);
    set_all(nullptr);
  });
}

}  // namespace qto
