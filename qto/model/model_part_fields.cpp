#include "qto/diagnostics/procedure.hpp"
#include "qto/model/model_part.hpp"

/// Properties that give and take plain fields.
namespace qto {

bool ModelPart::Exists() const noexcept {
  Procedure proc("ModelPart", "Exists[Get]");
  return has(exists);
}

void ModelPart::put_Exists(bool value) noexcept {
  Procedure proc("ModelPart", "Exists[Let]");
  set(exists, value);
}

bool ModelPart::LocalFile() const noexcept {
  Procedure proc("ModelPart", "LocalFile[Get]");
  return has(local_file);
}

bool ModelPart::FormulaHidden() const noexcept {
  Procedure proc("ModelPart", "FormulaHidden[Get]");
  return has(formula_hidden);
}

bool ModelPart::ResultsSet() const noexcept {
  Procedure proc("ModelPart", "ResultsSet[Get]");
  return has(results_set);
}

void ModelPart::ForceResultsRecalc() noexcept {
  Procedure proc("ModelPart", "ForceResultsRecalc");
  set(results_set, false);
}

bool ModelPart::IsConstant() const noexcept {
  Procedure proc("ModelPart", "IsConstant[Get]");
  return has(checked_for_precedents) && has(constant);
}

void ModelPart::put_HasError(bool value) noexcept {
  Procedure proc("ModelPart", "HasError[Let]");
  set(error, value);
}

void ModelPart::put_IntelligentDrillingUsed(bool value) noexcept {
  Procedure proc("ModelPart", "IntelligentDrillingUsed[Let]");
  set(intelligent, value);
}

std::string ModelPart::AddressShortLocal() const {
  Procedure proc("ModelPart", "AddressShortLocal[Get]");
  return rare().address_short_local;
}

std::string ModelPart::EmbeddedChartName() const {
  Procedure proc("ModelPart", "EmbeddedChartName[Get]");
  return rare().embedded_chart_name;
}

std::string ModelPart::FormulaLocal() const {
  Procedure proc("ModelPart", "FormulaLocal[Get]");
  return rare().formula_local;
}

std::string ModelPart::Title() const {
  Procedure proc("ModelPart", "Title[Get]");
  return rare().title;
}

}  // namespace qto
