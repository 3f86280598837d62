// Evaluates every formula of workbooks over the results that the files remember and compares with
// the result remembered for the formula itself.
// Usage: run_books [--list] FILE...

#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <map>

#include "qto/hosts/embedded/evaluate/evaluator.hpp"
#include "qto/hosts/embedded/evaluate/value_view.hpp"
#include "qto/hosts/embedded/functions/registry.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

namespace {

using namespace qto;
using namespace qto::embedded;

class StillWorld : public Environment {
 public:
  bool ready(const Area&) override { return true; }
  Book* find_open_book(std::string_view) const override { return nullptr; }
  double now() const override { return 45352.5; }
  double random() override { return 0.25; }
};

std::string shown(const ValueView& value) {
  if (value.is_number()) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value.number());
    return text;
  }
  if (value.is_text()) return '"' + std::string(value.text()) + '"';
  if (value.is_boolean()) return value.boolean() ? "TRUE" : "FALSE";
  return value.is_error() ? std::string(error_text(value.error())) : "(empty)";
}

bool same(const ValueView& a, const ValueView& b) {
  if (a.is_number() && b.is_number()) {
    const double size = std::max(std::fabs(a.number()), std::fabs(b.number()));
    return std::fabs(a.number() - b.number()) <= std::max(size * 1e-9, 1e-9);
  }
  if (a.type() != b.type()) return false;
  if (a.is_text()) return a.text() == b.text();
  return a.is_boolean() ? a.boolean() == b.boolean() : a.error() == b.error();
}

struct Counts {
  long same = 0, differ = 0, without_result = 0, unknown = 0;
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

class Checker {
 public:
  Checker(Book& book, bool list)
      : book_(book), list_(list), evaluator_(world_, functions::registry()) {}

  Counts run() {
    for (const auto& sheet : book_.sheets())
      sheet->cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell& cell, FormulaId id) {
        if (id != 0) check(*sheet, pos, cell, id);
      });
    return counts_;
  }

 private:
  void check(Sheet& sheet, CellPos pos, const Cell& cell, FormulaId id) {
    const FormulaRecord& record = book_.formula(id);
    if (record.kind == FormulaKind::data_table) return;
    const bool array = record.kind == FormulaKind::array;
    const CellPos first = array ? record.block.first : pos;
    const Operand result = evaluator_.evaluate(
        *record.compiled, sheet, first, array ? EvaluationMode::array : EvaluationMode::cell);
    const ValueView got = element(result, pos.row - first.row + 1, pos.column - first.column + 1);
    const ValueView want = view_of(cell, book_.texts);
    if (want.is_empty()) {
      ++counts_.without_result;
    } else if (same(got, want)) {
      ++counts_.same;
    } else {
      ++(got.is_error() && got.error() == ErrorValue::name ? counts_.unknown : counts_.differ);
      if (!list_) return;
      std::string text;
      record.compiled->append_local(text, {&book_, &sheet, first, nullptr, nullptr});
      std::cout << sheet.name << '!' << address_of(pos) << ' ' << text.substr(0, 300) << "  got "
                << shown(got) << "  want " << shown(want) << (array ? "  array" : "") << '\n';
    }
  }

  Book& book_;
  bool list_;
  StillWorld world_;
  Evaluator evaluator_;
  Counts counts_;
};

}  // namespace

int main(int argc, char** argv) {
  bool list = false;
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--list") {
      list = true;
      continue;
    }
    try {
      const auto book = open_workbook(argv[i]);
      const auto start = std::chrono::steady_clock::now();
      const Counts counts = Checker(*book, list).run();
      const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
      std::cout << argv[i] << ": same " << counts.same << ", differ " << counts.differ
                << ", #NAME? " << counts.unknown << ", without result " << counts.without_result
                << ", seconds " << took.count() << std::endl;
    } catch (const OpenFailure& failure) {
      std::cout << argv[i] << ": " << failure.what() << std::endl;
    }
  }
  return 0;
}
