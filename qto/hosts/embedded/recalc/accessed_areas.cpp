#include "qto/hosts/embedded/recalc/accessed_areas.hpp"

#include "qto/hosts/embedded/functions/registry.hpp"

namespace qto::embedded {

AccessedAreas::AccessedAreas(const FormulaGraph& graph)
    : graph_(graph), evaluator_(*this, functions::registry()) {}

bool AccessedAreas::ready(const Area& area) {
  out_->push_back(area);
  return true;
}

void AccessedAreas::list(const FormulaNode& node, std::vector<Area>& out) {
  const FormulaRecord& record = graph_.record(node);
  out_ = &out;
  evaluator_.evaluate(
      *record.compiled, graph_.sheet(node.sheet), node.at,
      record.kind == FormulaKind::array ? EvaluationMode::array : EvaluationMode::cell);
}

}  // namespace qto::embedded
