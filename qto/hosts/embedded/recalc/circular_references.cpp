#include "qto/hosts/embedded/recalc/circular_references.hpp"

#include <algorithm>

#include "qto/hosts/embedded/recalc/acyclic_proof.hpp"
#include "qto/hosts/embedded/recalc/component_search.hpp"

namespace qto::embedded {
namespace {

class CycleCollector : public ComponentVisitor {
 public:
  CycleCollector(const FormulaGraph& graph, std::unordered_map<const Sheet*, CellPos>& first)
      : graph_(graph), first_(first) {}

  void settle(const FormulaNode&, std::vector<Area>&) override {}
  void cycle(std::span<const FormulaNode> nodes) override {
    for (const FormulaNode& node : nodes) {
      const auto [entry, added] = first_.try_emplace(&graph_.sheet(node.sheet), node.at);
      if (!added) entry->second = std::min(entry->second, node.at);
    }
  }

 private:
  const FormulaGraph& graph_;
  std::unordered_map<const Sheet*, CellPos>& first_;
};

}  // namespace

CircularReferences::CircularReferences(const Book& book) {
  FormulaGraph graph({&book});
  if (proven_acyclic(graph)) return;
  CycleCollector collector(graph, first_);
  ComponentSearch(graph, collector).run();
}

std::optional<CellPos> CircularReferences::first_on(const Sheet& sheet) const {
  const auto found = first_.find(&sheet);
  if (found == first_.end()) return std::nullopt;
  return found->second;
}

const CircularReferences& CircularReferenceCache::of(const Book& book) {
  const auto found = entries_.find(&book);
  if (found != entries_.end() && found->second.serial == book.serial())
    return found->second.references;
  if (found != entries_.end()) entries_.erase(found);
  return entries_.emplace(&book, Entry{book.serial(), CircularReferences(book)})
      .first->second.references;
}

}  // namespace qto::embedded
