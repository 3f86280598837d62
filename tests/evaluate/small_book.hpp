#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/evaluate/evaluator.hpp"

namespace qto::embedded {

/// A book written as text, and formulas evaluated in it. Time stands still at 2024-03-01 12:00 and
/// chance always gives 0.25.
class SmallBook : public Environment {
 public:
  SmallBook();
  explicit SmallBook(std::string_view cells) : SmallBook() { fill(cells); }

  /// Sets cells, as in "A1=5; B1=text; Data!C2=TRUE; C3=#N/A; D4==A1+1"; sheets are made as needed.
  /// A text that should look like a number stands in quotes.
  void fill(std::string_view cells);
  void name(std::string_view name, std::string_view refers_to, const Sheet* sheet = nullptr);
  Sheet& sheet(std::string_view name);
  /// The result as a text: numbers as joined to text, arrays as {1,2;3,4}, references with sheet.
  std::string run(std::string_view formula, std::string_view at = "J20",
                  EvaluationMode mode = EvaluationMode::cell);
  /// The result as a number with all its digits; not a number when it is none.
  double number(std::string_view formula);
  std::string run_array(std::string_view formula, std::string_view at = "J20") {
    return run(formula, at, EvaluationMode::array);
  }
  std::string run_reference(std::string_view formula, std::string_view at = "J20") {
    return run(formula, at, EvaluationMode::reference);
  }
  bool gave_up() const { return evaluator_.gave_up(); }
  bool was_volatile() const { return evaluator_.was_volatile(); }

  bool ready(const Area& area) override;
  Book* find_open_book(std::string_view name) const override;
  double now() const override { return 45352.5; }
  double random() override { return 0.25; }

  Book book;
  /// Another open book, found by its name.
  Book other;
  /// Blocks that the evaluator asked about, in order; cells of `waiting` are not ready.
  std::string asked;
  std::string waiting;

 private:
  Evaluator evaluator_;
};

/// How results are written in tests and in the documentation.
std::string text_of(const Operand& operand);

}  // namespace qto::embedded
