#include "tests/conformance/book_check.hpp"

#include <chrono>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/recalc/calculator.hpp"
#include "tests/conformance/comparing.hpp"

namespace qto::embedded::conformance {

namespace {

/// A book that is open alone.
class OnlyBook : public OpenBooks {
 public:
  explicit OnlyBook(Book& book) : book_(book) {}
  Book* find(std::string_view name) const override {
    return text::equal_fold(name, book_.name) ? &book_ : nullptr;
  }
  std::vector<Book*> all() const override { return {&book_}; }

 private:
  Book& book_;
};

struct Remembered {
  Sheet* sheet;
  CellPos pos;
  FormulaId formula;
  Variant value;
  bool holds_alone;  ///< the formula gives the value over remembered values
};

/// The element of an array result that a cell of its block shows.
ValueView element(const Operand& result, int row, int column) {
  if (!result.is_array()) return view_of(*result.value());
  const VariantArray& array = result.value()->array();
  if (array.rows() == 1) row = 1;
  if (array.columns() == 1) column = 1;
  if (row > array.rows() || column > array.columns()) return ErrorValue::na;
  return view_of(array.at(row, column));
}

/// The moment, in the 1900 system, that a cell with nothing but NOW() or TODAY() remembers.
double moment_of(const Book& book) {
  double moment = 45352.5;
  bool exact = false;
  for (const auto& sheet : book.sheets())
    sheet->cells.for_each(Rect::sheet(), [&](CellPos, const Cell& cell, FormulaId id) {
      const auto compiled = id != 0 ? book.formula(id).compiled : nullptr;
      const formula::SyntaxTree* tree = compiled ? compiled->tree() : nullptr;
      if (!tree || cell.type() != CellType::number || exact) return;
      const formula::Node& root = tree->at(tree->root);
      if (root.kind != formula::NodeKind::call || root.child_count != 0) return;
      const std::string& function = tree->texts[root.payload];
      if (function != "NOW" && function != "TODAY") return;
      moment = cell.number() + book.date_shift();
      exact = function == "NOW";
    });
  return moment;
}

class Check {
 public:
  explicit Check(Book& book)
      : book_(book), world_(moment_of(book)), evaluator_(world_, functions::registry()) {}

  BookResult run() {
    for (const auto& sheet : book_.sheets())
      sheet->cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell& cell, FormulaId id) {
        if (id != 0) remember(*sheet, pos, cell, id);
      });
    const auto start = std::chrono::steady_clock::now();
    book_.everything_changed();
    Calculator(OnlyBook(book_)).calculate(book_, world_.now());
    result_.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    for (const Remembered& cell : remembered_) compare(cell);
    return std::move(result_);
  }

 private:
  void remember(Sheet& sheet, CellPos pos, const Cell& cell, FormulaId id) {
    const FormulaRecord& record = book_.formula(id);
    if (record.kind == FormulaKind::data_table) return;
    if (cell.is_empty()) {
      ++result_.without_result;
      return;
    }
    const bool array = record.kind == FormulaKind::array;
    const CellPos first = array ? record.block.first : pos;
    const Operand alone = evaluator_.evaluate(*record.compiled, sheet, first,
                                              array ? EvaluationMode::array : EvaluationMode::cell);
    const ValueView want = view_of(cell, book_.texts);
    const ValueView got = element(alone, pos.row - first.row + 1, pos.column - first.column + 1);
    remembered_.push_back({&sheet, pos, id, want.to_variant(), same_value(got, want)});
  }

  void compare(const Remembered& cell) {
    const FormulaRecord& record = book_.formula(cell.formula);
    const formula::SyntaxTree* tree = record.compiled->tree();
    const auto functions = tree ? functions_of(*tree) : std::set<std::string>{"(unreadable)"};
    ++result_.compared;
    for (const std::string& name : functions) ++result_.by_function[name].compared;
    const Cell* now = cell.sheet->cells.find(cell.pos);
    const ValueView got = now ? view_of(*now, book_.texts) : ValueView();
    if (same_value(got, view_of(cell.value))) {
      // Equal only because the calculation left it alone.
      if (cell.holds_alone || depends_on_time_or_chance(functions)) return;
      ++result_.kept;
      for (const std::string& name : functions) ++result_.by_function[name].kept;
      return;
    }
    const Reason reason = reason_of(cell, functions);
    ++result_.differ[static_cast<int>(reason)];
    for (const std::string& name : functions)
      ++result_.by_function[name].differ[static_cast<int>(reason)];
    note(cell, record, reason, got);
  }

  static Reason reason_of(const Remembered& cell, const std::set<std::string>& functions) {
    if (depends_on_time_or_chance(functions)) return Reason::time_or_chance;
    if (cell.holds_alone) return Reason::inherited;
    for (const std::string& name : functions)
      if (name.front() != '(' && !functions::registry().find(name)) return Reason::unknown_function;
    return Reason::own;
  }

  void note(const Remembered& cell, const FormulaRecord& record, Reason reason,
            const ValueView& got) {
    const bool array = record.kind == FormulaKind::array;
    const CellPos first = array ? record.block.first : cell.pos;
    std::string text;
    RenderContext context;
    context.book = &book_;
    context.sheet = cell.sheet;
    context.at = first;
    record.compiled->append_local(text, context);
    result_.differences.push_back({reason, cell.sheet->name + '!' + address_of(cell.pos), text,
                                   shown(got), shown(view_of(cell.value)), array});
  }

  Book& book_;
  StillWorld world_;
  Evaluator evaluator_;
  std::vector<Remembered> remembered_;
  BookResult result_;
};

}  // namespace

const char* name_of(Reason reason) {
  switch (reason) {
    case Reason::time_or_chance:
      return "time or chance";
    case Reason::unknown_function:
      return "unknown function";
    case Reason::inherited:
      return "inherited";
    case Reason::own:
      break;
  }
  return "own";
}

BookResult check_book(Book& book) { return Check(book).run(); }

}  // namespace qto::embedded::conformance
