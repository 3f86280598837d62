#include "qto/hosts/embedded/recalc/calculation.hpp"

#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/recalc/store_result.hpp"

namespace qto::embedded {
namespace {

const double* number_in(const Variant& value) {
  const Date* date = value.get_if<Date>();
  return date ? &date->serial : value.get_if<double>();
}

bool nearly_same(const Variant& before, const Variant& after, double change) {
  const double* a = number_in(before);
  const double* b = number_in(after);
  return a && b ? std::fabs(*a - *b) < change : before == after;
}

}  // namespace

Calculation::Calculation(const std::vector<Book*>& books, const OpenBooks& open, double now)
    : Calculation(books, open, now, pending_in(books)) {}

Calculation::Calculation(const std::vector<Book*>& books, const OpenBooks& open, double now,
                         std::span<const CellAddress> changes)
    : open_(open),
      now_(now),
      graph_({books.begin(), books.end()}, &open),
      changed_(marked(graph_, changes)),
      search_(graph_, *this, selection(books)),
      evaluator_(*this, functions::registry()) {}

std::vector<CellAddress> Calculation::pending_in(const std::vector<Book*>& books) {
  std::vector<CellAddress> cells;
  for (const Book* book : books)
    cells.insert(cells.end(), book->pending().begin(), book->pending().end());
  return cells;
}

MarkedCells Calculation::marked(const FormulaGraph& graph, std::span<const CellAddress> cells) {
  MarkedCells marked(graph);
  for (const CellAddress& cell : cells) marked.add({cell.sheet, Rect::cell(cell.pos)});
  return marked;
}

FormulaSelection Calculation::selection(const std::vector<Book*>& books) {
  const bool all =
      std::any_of(books.begin(), books.end(), [](const Book* book) { return book->all_pending(); });
  return all ? FormulaSelection::everything() : affected_formulas(graph_, changed_);
}

void Calculation::run() { search_.run(); }

double Calculation::random() { return std::uniform_real_distribution<double>(0, 1)(random_); }

bool Calculation::ready(const Area& area) {
  if (!search_.unsettled(area)) return true;
  unsettled_.push_back(area);
  return false;
}

void Calculation::settle(const FormulaNode& node, std::vector<Area>& waits) {
  if (must_evaluate(node) && !evaluate(node))
    waits.insert(waits.end(), unsettled_.begin(), unsettled_.end());
}

bool Calculation::evaluate(const FormulaNode& node) {
  const FormulaRecord& record = graph_.record(node);
  const EvaluationMode mode =
      record.kind == FormulaKind::array ? EvaluationMode::array : EvaluationMode::cell;
  unsettled_.clear();
  const Operand result =
      evaluator_.evaluate(*record.compiled, graph_.sheet(node.sheet), node.at, mode);
  if (evaluator_.gave_up()) return false;
  store(node, result.value() ? *result.value() : Variant(ErrorValue::value));
  return true;
}

void Calculation::cycle(std::span<const FormulaNode> nodes, std::vector<Area>& waits) {
  const auto must = [this](const FormulaNode& node) { return must_evaluate(node); };
  if (std::none_of(nodes.begin(), nodes.end(), must)) return;
  const Iteration& iteration = graph_.sheet(nodes.front().sheet).book().iteration;
  if (iteration.on) return iterate({nodes.begin(), nodes.end()}, iteration, waits);
  for (const FormulaNode& node : nodes) store(node, 0.0);
}

/// Goes round the cells, sheet by sheet and row by row, until none changes much any more. Of an
/// array formula the first cell decides.
void Calculation::iterate(std::vector<FormulaNode> nodes, const Iteration& iteration,
                          std::vector<Area>& waits) {
  std::ranges::sort(nodes, {},
                    [](const FormulaNode& node) { return std::pair(node.sheet, node.at); });
  std::erase_if(nodes, [this](const FormulaNode& node) { return keeps_value(node); });
  for (int round = 0; round < iteration.count; ++round) {
    bool moving = false;
    for (const FormulaNode& node : nodes) {
      const Variant before = value_of(node);
      if (!evaluate(node)) {
        waits.insert(waits.end(), unsettled_.begin(), unsettled_.end());
        return;
      }
      moving |= !nearly_same(before, value_of(node), iteration.change);
    }
    if (!moving) return;
  }
}

/// The value of the node's first cell.
Variant Calculation::value_of(const FormulaNode& node) const {
  const Sheet& sheet = graph_.sheet(node.sheet);
  const Cell* cell = sheet.cells.find(node.at);
  return cell ? sheet.book().value_of(*cell) : Variant();
}

bool Calculation::must_evaluate(const FormulaNode& node) {
  if (keeps_value(node)) return false;
  const Book& book = graph_.sheet(node.sheet).book();
  return book.all_pending() || graph_.precedents(node).is_volatile || reads_a_change(node);
}

bool Calculation::reads_a_change(const FormulaNode& node) {
  if (changed_.none()) return false;
  Sheet& sheet = graph_.sheet(node.sheet);
  if (changed_.touch({&sheet, graph_.cells_of(node)})) return true;
  const std::vector<Precedent>& items = graph_.precedents(node).items;
  for (std::size_t i = 0; i < items.size();) {
    const bool depends_on_values = items[i].depends_on_values();
    const std::optional<Area> area = resolve_precedent(items, i, sheet, node.at);
    if (!area) continue;
    if (changed_.touch(*area)) return true;
    // Its turn may come before that of what it may read.
    if (depends_on_values && search_.unsettled(*area)) return true;
  }
  return false;
}

/// True for a formula that nobody can evaluate, as long as its remembered value may be right.
bool Calculation::keeps_value(const FormulaNode& node) {
  const Cell* cell = graph_.sheet(node.sheet).cells.find(node.at);
  if (!cell || cell->is_empty()) return false;
  if (graph_.record(node).compiled->broken()) return true;
  return graph_.precedents(node).cannot_evaluate && !reads_a_change(node);
}

void Calculation::store(const FormulaNode& node, const Variant& result) {
  Sheet& sheet = graph_.sheet(node.sheet);
  const Rect cells = graph_.cells_of(node);
  if (store_result(sheet, cells, result)) changed_.add({&sheet, cells});
}

}  // namespace qto::embedded
