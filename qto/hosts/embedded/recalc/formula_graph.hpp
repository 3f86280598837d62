#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/recalc/precedents.hpp"

namespace qto::embedded {

/// A cell with a formula, or an array formula with all of its block, at its first cell.
struct FormulaNode {
  std::uint32_t sheet = 0;  ///< number of the sheet in its graph
  FormulaId formula = 0;
  CellPos at;
};

/// The sheets of one or several books and what their formulas read. It looks at the books as they
/// are and must not outlive a change of names, tables or sheets.
class FormulaGraph {
 public:
  /// With `open`, links from one of the books to another are followed.
  explicit FormulaGraph(const std::vector<const Book*>& books, const OpenBooks* open = nullptr);

  std::uint32_t sheet_count() const noexcept { return static_cast<std::uint32_t>(sheets_.size()); }
  Sheet& sheet(std::uint32_t number) const noexcept { return *sheets_[number]; }
  /// Nothing for a sheet of a book that is not in the graph.
  std::optional<std::uint32_t> number_of(const Sheet& sheet) const noexcept;

  const FormulaRecord& record(const FormulaNode& node) const noexcept {
    return sheet(node.sheet).book().formula(node.formula);
  }
  /// The cells that a node fills.
  Rect cells_of(const FormulaNode& node) const noexcept;
  /// What a node reads; made once for all nodes of a sheet that share a formula.
  const PrecedentList& precedents(const FormulaNode& node);

 private:
  const OpenBooks* open_;
  std::vector<Sheet*> sheets_;
  std::unordered_map<const Sheet*, std::uint32_t> numbers_;
  std::unordered_map<std::uint64_t, std::unique_ptr<const PrecedentList>> lists_;
  // Neighbours mostly share their formula.
  std::uint64_t last_key_ = 0;
  const PrecedentList* last_list_ = nullptr;
};

}  // namespace qto::embedded
