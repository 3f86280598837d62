#include "tests/conformance/perturbation/shrink.hpp"

#include <algorithm>
#include <optional>

namespace qto::embedded::conformance {
namespace {

std::optional<Miss> miss_with(GeneratedBook& book, const GeneratedBook::FormulaCell& cell,
                              const GeneratedFormula& formula, const PerturbationPlan& plan,
                              Following following) {
  try {
    book.enter(cell, formula);
  } catch (const std::exception&) {
    return std::nullopt;  // what is left is no formula
  }
  PerturbationResult result = perturb(book.workbook(), plan);
  for (Miss& miss : result.shown)
    if (miss.following == following) return std::move(miss);
  return std::nullopt;
}

}  // namespace

Miss shrunk(GeneratedBook& book, const Miss& miss, const PerturbationPlan& plan) {
  const auto& cells = book.formulas();
  const auto cell = std::ranges::find_if(cells, [&](const GeneratedBook::FormulaCell& candidate) {
    return candidate.sheet->name + "!" + address_of(candidate.at) == miss.cell;
  });
  if (cell == cells.end()) return miss;
  PerturbationPlan alone = plan;
  alone.only = CellAddress{cell->sheet, cell->at};
  Miss best = miss;
  GeneratedFormula formula = cell->formula;
  for (bool simpler = true; simpler;) {
    simpler = false;
    for (const GeneratedFormula& candidate : formula.simpler()) {
      const auto still = miss_with(book, *cell, candidate, alone, miss.following);
      if (!still) continue;
      best = *still;
      formula = candidate;
      simpler = true;
      break;
    }
  }
  book.enter(*cell, cell->formula);
  return best;
}

}  // namespace qto::embedded::conformance
