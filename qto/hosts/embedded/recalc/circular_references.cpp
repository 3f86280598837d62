#include "qto/hosts/embedded/recalc/circular_references.hpp"

#include <algorithm>

#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/recalc/acyclic_proof.hpp"
#include "qto/hosts/embedded/recalc/component_search.hpp"

namespace qto::embedded {
namespace {

/// The cells that would lie on a cycle if formulas read all that they may read.
class Suspects : public ComponentVisitor {
 public:
  explicit Suspects(FormulaGraph& graph) : graph_(graph), cells_(graph) {
    ComponentSearch(graph, *this, FormulaSelection::everything(), Reads::possible).run();
  }

  bool none() const noexcept { return cells_.none(); }
  const FormulaSelection& formulas() const noexcept { return formulas_; }
  bool contain(const FormulaNode& node) const {
    return cells_.touch({&graph_.sheet(node.sheet), Rect::cell(node.at)});
  }

 private:
  void settle(const FormulaNode&, std::vector<Area>&) override {}
  void cycle(std::span<const FormulaNode> nodes, std::vector<Area>&) override {
    for (const FormulaNode& node : nodes) {
      cells_.add({&graph_.sheet(node.sheet), Rect::cell(node.at)});
      formulas_.add(node);
    }
  }

  FormulaGraph& graph_;
  MarkedCells cells_;
  FormulaSelection formulas_;
};

/// Finds out what a formula reads by evaluating it over the values that the cells hold now.
class AccessedAreas final : private Environment {
 public:
  explicit AccessedAreas(const FormulaGraph& graph)
      : graph_(graph), evaluator_(*this, functions::registry()) {}

  /// Appends the blocks that an evaluation of the node reads.
  void list(const FormulaNode& node, std::vector<Area>& out) {
    const FormulaRecord& record = graph_.record(node);
    out_ = &out;
    evaluator_.evaluate(
        *record.compiled, graph_.sheet(node.sheet), node.at,
        record.kind == FormulaKind::array ? EvaluationMode::array : EvaluationMode::cell);
  }

 private:
  bool ready(const Area& area) override {
    out_->push_back(area);
    return true;
  }
  Book* find_open_book(std::string_view) const override { return nullptr; }
  double now() const override { return 1; }
  double random() override { return 0; }

  const FormulaGraph& graph_;
  std::vector<Area>* out_ = nullptr;
  Evaluator evaluator_;
};

/// Collects the cycles. What a suspect reads of all that it may read turns out in evaluation.
class CycleCollector : public ComponentVisitor {
 public:
  CycleCollector(FormulaGraph& graph, const Suspects& suspects,
                 std::unordered_map<const Sheet*, CellPos>& first)
      : graph_(graph), suspects_(suspects), accessed_(graph), evaluated_(graph), first_(first) {}

 private:
  void settle(const FormulaNode& node, std::vector<Area>& waits) override {
    const std::vector<Precedent>& items = graph_.precedents(node).items;
    if (std::ranges::none_of(items, &Precedent::depends_on_values) || !suspects_.contain(node))
      return;
    const Area cell{&graph_.sheet(node.sheet), Rect::cell(node.at)};
    if (evaluated_.touch(cell)) return;
    evaluated_.add(cell);
    accessed_.list(node, waits);
  }

  void cycle(std::span<const FormulaNode> nodes, std::vector<Area>&) override {
    for (const FormulaNode& node : nodes) {
      const auto [entry, added] = first_.try_emplace(&graph_.sheet(node.sheet), node.at);
      if (!added) entry->second = std::min(entry->second, node.at);
    }
  }

  FormulaGraph& graph_;
  const Suspects& suspects_;
  AccessedAreas accessed_;
  MarkedCells evaluated_;
  std::unordered_map<const Sheet*, CellPos>& first_;
};

}  // namespace

CircularReferences::CircularReferences(const Book& book, const std::function<void()>& calculate) {
  if (book.iteration.on) return;
  FormulaGraph graph({&book});
  if (proven_acyclic(graph)) return;
  const Suspects suspects(graph);
  if (suspects.none()) return;
  if (calculate) calculate();
  CycleCollector collector(graph, suspects, first_);
  ComponentSearch(graph, collector, suspects.formulas(), Reads::certain).run();
}

std::optional<CellPos> CircularReferences::first_on(const Sheet& sheet) const {
  const auto found = first_.find(&sheet);
  if (found == first_.end()) return std::nullopt;
  return found->second;
}

const CircularReferences& CircularReferenceCache::of(const Book& book,
                                                     const std::function<void()>& calculate) {
  const auto found = entries_.find(&book);
  if (found != entries_.end() && found->second.serial == book.serial())
    return found->second.references;
  if (found != entries_.end()) entries_.erase(found);
  return entries_.emplace(&book, Entry{book.serial(), CircularReferences(book, calculate)})
      .first->second.references;
}

}  // namespace qto::embedded
