#include "qto/hosts/embedded/recalc/formula_graph.hpp"

namespace qto::embedded {

FormulaGraph::FormulaGraph(const std::vector<const Book*>& books, const OpenBooks* open)
    : open_(open) {
  for (const Book* book : books)
    for (const auto& sheet : book->sheets()) {
      numbers_.emplace(sheet.get(), sheet_count());
      sheets_.push_back(sheet.get());
    }
}

std::optional<std::uint32_t> FormulaGraph::number_of(const Sheet& sheet) const noexcept {
  const auto found = numbers_.find(&sheet);
  if (found == numbers_.end()) return std::nullopt;
  return found->second;
}

Rect FormulaGraph::cells_of(const FormulaNode& node) const noexcept {
  const FormulaRecord& formula = record(node);
  return formula.kind == FormulaKind::normal ? Rect::cell(node.at) : formula.block;
}

const PrecedentList& FormulaGraph::precedents(const FormulaNode& node) {
  const std::uint64_t key = std::uint64_t{node.sheet} << 32 | node.formula;
  if (last_list_ && key == last_key_) return *last_list_;
  auto& list = lists_[key];
  if (!list) {
    const Sheet& owner = sheet(node.sheet);
    list = std::make_unique<const PrecedentList>(
        list_precedents(owner.book(), owner, record(node), open_));
  }
  last_key_ = key;
  last_list_ = list.get();
  return *list;
}

}  // namespace qto::embedded
