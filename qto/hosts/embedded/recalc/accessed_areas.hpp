#pragma once

#include <vector>

#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/recalc/formula_graph.hpp"

namespace qto::embedded {

/// Finds out what a formula reads by evaluating it over the values that the cells hold now.
class AccessedAreas final : private Environment {
 public:
  explicit AccessedAreas(const FormulaGraph& graph);
  /// Appends the blocks that an evaluation of the node reads.
  void list(const FormulaNode& node, std::vector<Area>& out);

 private:
  bool ready(const Area& area) override;
  Book* find_open_book(std::string_view) const override { return nullptr; }
  double now() const override { return 1; }
  double random() override { return 0; }

  const FormulaGraph& graph_;
  std::vector<Area>* out_ = nullptr;
  Evaluator evaluator_;
};

}  // namespace qto::embedded
