#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/recalc/acyclic_proof.hpp"
#include "qto/hosts/embedded/recalc/calculator.hpp"
#include "qto/hosts/embedded/recalc/circular_references.hpp"
#include "qto/hosts/embedded/recalc/precedents.hpp"
#include "qto/hosts/embedded/recalc/store_result.hpp"
#include "tests/recalc/text_book.hpp"

/// What the searches find, compared with looking at every pair of cells in small random books.
namespace qto::embedded {
namespace {

constexpr std::int32_t side = 6;

class RandomBook : public TextBook {
 public:
  /// With `lookups`, what formulas read also depends on values.
  RandomBook(std::uint32_t seed, bool lookups) : lookups_(lookups), random_(seed) {
    at("Sheet2!A1");
    const int blocks = pick(1, 4);
    for (int i = 0; i < blocks; ++i) copy_down();
    if (pick(0, 3) == 0) array("B2:C3", "SUM(" + area() + ")+A1:A2");
  }

  int pick(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }
  CellPos cell() { return {pick(1, side), pick(1, side)}; }

 private:
  /// One formula in all cells of a small block, as people copy it.
  void copy_down() {
    const CellPos first = cell();
    const CellPos last{pick(first.row, side), pick(first.column, side)};
    Sheet& sheet = *book.sheets()[pick(0, 1)];
    const FormulaId id = formulas.intern(text(), first);
    for (std::int32_t row = first.row; row <= last.row; ++row)
      for (std::int32_t column = first.column; column <= last.column; ++column) {
        sheet.cells.touch({row, column});
        sheet.cells.set_formula({row, column}, id);
      }
  }

  std::string reference() {
    std::string out;
    append_cell(out, cell(), pick(0, 2) == 0, pick(0, 2) == 0);
    return out;
  }
  std::string area() {
    const std::string sheet = pick(0, 4) == 0 ? "Sheet2!" : "";
    return sheet + (pick(0, 1) ? reference() : reference() + ':' + reference());
  }
  std::string text() {
    switch (pick(0, lookups_ ? 5 : 2)) {
      case 0:
        return area() + "+1";
      case 1:
        return "SUM(" + area() + ',' + area() + ')';
      case 2:
        return reference() + "*0.5+" + reference() + "+ROWS(" + area() + ')';
      case 3:
        return "IF(" + reference() + ">2," + area() + ",1)+COUNT(" + area() + ")";
      case 4:
        return "IFERROR(CHOOSE(" + reference() + ',' + reference() + ',' + reference() + ")," +
               reference() + ')';
      default:
        return "INDEX(" + area() + ",1,1)";
    }
  }

  bool lookups_;
  std::mt19937 random_;
};

using Node = std::pair<const Sheet*, CellPos>;

/// The blocks that the formula of a cell reads.
std::vector<Area> areas_read(const Book& book, Sheet& sheet, CellPos at) {
  std::vector<Area> areas;
  const PrecedentList list = list_precedents(book, sheet, book.formula(sheet.formula_at(at)));
  for (std::size_t i = 0; i < list.items.size();) {
    const bool read = !list.items[i].watched_only;
    const std::optional<Area> area = resolve_precedent(list.items, i, sheet, at);
    if (area && read) areas.push_back(*area);
  }
  return areas;
}

/// The formula cells with what they read; the cells of an array formula are its first one.
std::map<Node, std::set<Node>> graph_of(const Book& book) {
  std::map<Node, std::set<Node>> graph;
  const auto node_at = [&](const Sheet& sheet, CellPos pos) -> std::optional<Node> {
    const FormulaId id = sheet.formula_at(pos);
    if (id == 0) return std::nullopt;
    const FormulaRecord& record = book.formula(id);
    return Node{&sheet, record.kind == FormulaKind::array ? record.block.first : pos};
  };
  for (const auto& sheet : book.sheets())
    for (std::int32_t row = 1; row <= 2 * side; ++row)
      for (std::int32_t column = 1; column <= 2 * side; ++column) {
        const auto node = node_at(*sheet, {row, column});
        if (!node) continue;
        for (const Area& area : areas_read(book, *sheet, node->second))
          for (std::int32_t r = 1; r <= 2 * side; ++r)
            for (std::int32_t c = 1; c <= 2 * side; ++c)
              if (area.rect.contains({r, c}))
                if (const auto source = node_at(*area.sheet, {r, c})) graph[*node].insert(*source);
      }
  return graph;
}

bool reaches_itself(const std::map<Node, std::set<Node>>& graph, const Node& start) {
  std::set<Node> seen;
  std::vector<Node> todo{start};
  while (!todo.empty()) {
    const auto found = graph.find(todo.back());
    todo.pop_back();
    if (found == graph.end()) continue;
    for (const Node& next : found->second) {
      if (next == start) return true;
      if (seen.insert(next).second) todo.push_back(next);
    }
  }
  return false;
}

TEST(RandomBooksTest, CircularReferencesAgreeWithLookingAtEveryPair) {
  int circular = 0, proven = 0;
  for (std::uint32_t seed = 1; seed <= 800; ++seed) {
    RandomBook book(seed, false);
    std::map<const Sheet*, CellPos> expected;
    const auto graph = graph_of(book.book);
    for (const auto& [node, sources] : graph)
      if (reaches_itself(graph, node)) {
        const auto [entry, added] = expected.try_emplace(node.first, node.second);
        if (!added) entry->second = std::min(entry->second, node.second);
      }
    const CircularReferences found(book.book);
    for (const auto& sheet : book.book.sheets()) {
      const auto cell = expected.find(sheet.get());
      ASSERT_EQ(found.first_on(*sheet),
                cell == expected.end() ? std::nullopt : std::optional(cell->second))
          << "seed " << seed;
    }
    FormulaGraph sheets({&book.book});
    const bool proof = proven_acyclic(sheets);
    ASSERT_FALSE(proof && !expected.empty()) << "seed " << seed;
    circular += !expected.empty();
    proven += proof;
  }
  // Both kinds must be there, or the comparison says nothing.
  EXPECT_GT(circular, 100);
  EXPECT_GT(proven, 100);
}

class NoBooks : public OpenBooks {
 public:
  Book* find(std::string_view) const override { return nullptr; }
  std::vector<Book*> all() const override { return {}; }
};

std::vector<std::string> shown_cells(RandomBook& book) {
  std::vector<std::string> shown;
  for (const auto& sheet : book.book.sheets())
    for (std::int32_t row = 1; row <= side; ++row)
      for (std::int32_t column = 1; column <= side; ++column)
        shown.push_back(book.shown(sheet->name + '!' + address_of(CellPos{row, column})));
  return shown;
}

/// Evaluates each cell where another asks for it, as laziness has it, by plain recursion.
class OnDemand : private Environment {
 public:
  explicit OnDemand(Book& book) : book_(book) {}

  /// False when the cells cannot be evaluated because one of them needs itself.
  bool evaluate_all() {
    for (const auto& sheet : book_.sheets()) ready({sheet.get(), {{1, 1}, {2 * side, 2 * side}}});
    return !circular_;
  }

 private:
  bool ready(const Area& area) override {
    std::vector<CellPos> wanted;
    area.sheet->cells.for_each(area.rect, [&](CellPos pos, const Cell&, FormulaId id) {
      if (id != 0) wanted.push_back(pos);
    });
    for (const CellPos pos : wanted)
      if (!circular_) evaluate(*area.sheet, pos);
    return !circular_;
  }
  void evaluate(Sheet& sheet, CellPos pos) {
    const FormulaRecord& record = book_.formula(sheet.formula_at(pos));
    const bool array = record.kind == FormulaKind::array;
    const Node node{&sheet, array ? record.block.first : pos};
    if (done_.contains(node)) return;
    if (!under_way_.insert(node).second) {
      circular_ = true;
      return;
    }
    // An evaluator is not for use inside of itself.
    Evaluator evaluator(*this, functions::registry());
    const Operand result = evaluator.evaluate(*record.compiled, sheet, node.second,
                                              array ? EvaluationMode::array : EvaluationMode::cell);
    if (circular_) return;
    store_result(sheet, array ? record.block : Rect::cell(pos), *result.value());
    under_way_.erase(node);
    done_.insert(node);
  }
  Book* find_open_book(std::string_view) const override { return nullptr; }
  double now() const override { return 1; }
  double random() override { return 0; }

  Book& book_;
  std::set<Node> under_way_, done_;
  bool circular_ = false;
};

TEST(RandomBooksTest, CalculatingAgreesWithEvaluatingOnDemand) {
  const NoBooks none;
  Calculator calculator(none);
  int circular = 0, spared = 0;
  for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
    RandomBook book(seed, true), other(seed, true);
    const auto graph = graph_of(book.book);
    const bool possible = std::ranges::any_of(
        graph, [&](const auto& entry) { return reaches_itself(graph, entry.first); });
    const bool evaluated = OnDemand(other.book).evaluate_all();
    const std::vector<std::string> expected = shown_cells(other);
    // An error ends a sum before all is read, but all of it counts.
    const auto is_error = [](const std::string& text) { return text.starts_with('#'); };
    if (evaluated && std::ranges::any_of(expected, is_error)) continue;
    book.book.everything_changed();
    calculator.calculate(book.book, 45'000);
    ASSERT_EQ(CircularReferences(book.book).any(), !evaluated) << "seed " << seed;
    if (evaluated) {
      ASSERT_EQ(shown_cells(book), expected) << "seed " << seed;
    }
    circular += !evaluated;
    spared += possible && evaluated;
  }
  EXPECT_GT(circular, 100);
  EXPECT_GT(spared, 20);
}

TEST(RandomBooksTest, CalculatingAfterAnEditAgreesWithCalculatingEverything) {
  const NoBooks none;
  Calculator calculator(none);
  int compared = 0;
  for (std::uint32_t seed = 1; seed <= 800; ++seed) {
    RandomBook book(seed, true);
    if (CircularReferences(book.book).any()) continue;
    book.book.everything_changed();
    calculator.calculate(book.book, 45'000);
    for (int edits = 0; edits < 4; ++edits) {
      const CellPos pos = book.cell();
      Sheet& sheet = *book.book.sheets()[book.pick(0, 1)];
      if (sheet.formula_at(pos) != 0) continue;
      book.value(sheet.name + '!' + address_of(pos), static_cast<double>(book.pick(1, 9)));
      calculator.calculate(book.book, 45'000);
      const std::vector<std::string> after_edit = shown_cells(book);
      book.book.everything_changed();
      calculator.calculate(book.book, 45'000);
      ASSERT_EQ(after_edit, shown_cells(book)) << "seed " << seed;
      ++compared;
    }
  }
  EXPECT_GT(compared, 300);
}

}  // namespace
}  // namespace qto::embedded
