#pragma once

#include <random>
#include <span>
#include <vector>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/recalc/component_search.hpp"
#include "qto/hosts/embedded/recalc/formula_graph.hpp"
#include "qto/hosts/embedded/recalc/marked_cells.hpp"

namespace qto::embedded {

/// One calculation of some books: goes through their formulas in the order of their precedents and
/// evaluates those that depend on a change.
class Calculation final : private ComponentVisitor, private Environment {
 public:
  /// Of what is pending in the books.
  Calculation(const std::vector<Book*>& books, const OpenBooks& open, double now);
  /// Of what depends on the changes of these cells; nothing else is pending.
  Calculation(const std::vector<Book*>& books, const OpenBooks& open, double now,
              std::span<const CellAddress> changes);
  void run();

 private:
  void settle(const FormulaNode& node, std::vector<Area>& waits) override;
  void cycle(std::span<const FormulaNode> nodes, std::vector<Area>& waits) override;
  void iterate(std::vector<FormulaNode> nodes, const Iteration& iteration,
               std::vector<Area>& waits);
  /// Evaluates and stores; false when the node has to wait for unsettled_.
  bool evaluate(const FormulaNode& node);

  bool ready(const Area& area) override;
  Book* find_open_book(std::string_view name) const override { return open_.find(name); }
  double now() const override { return now_; }
  double random() override;

  static std::vector<CellAddress> pending_in(const std::vector<Book*>& books);
  static MarkedCells marked(const FormulaGraph& graph, std::span<const CellAddress> cells);
  FormulaSelection selection(const std::vector<Book*>& books);
  bool must_evaluate(const FormulaNode& node);
  bool reads_a_change(const FormulaNode& node);
  bool keeps_value(const FormulaNode& node);
  Variant value_of(const FormulaNode& node) const;
  void store(const FormulaNode& node, const Variant& result);

  const OpenBooks& open_;
  double now_;
  FormulaGraph graph_;
  MarkedCells changed_;
  ComponentSearch search_;  // of the formulas that the changes may reach
  Evaluator evaluator_;
  std::vector<Area> unsettled_;  // blocks that the evaluation under way would have to wait for
  std::mt19937_64 random_{std::random_device{}()};
};

}  // namespace qto::embedded
