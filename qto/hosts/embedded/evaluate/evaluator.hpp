#pragma once

#include <memory>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/operand.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {

class FunctionTable;

enum class EvaluationMode : std::uint8_t {
  cell,        ///< an ordinary formula: references where a value is wanted intersect with the cell
  array,       ///< an array formula: every operation runs over all elements
  reference,   ///< keep a reference as it is (names, Evaluate, INDIRECT-like callers)
  cell_value,  ///< as cell, for a piece of a formula: a blank stays blank
  cell_reference,  ///< as cell, for a piece of a formula: keep a reference as it is
};

/// Evaluates compiled formulas. One evaluator serves many formulas of many books.
class Evaluator {
 public:
  /// Both must outlive the evaluator. The functions are those of functions/registry.hpp.
  Evaluator(Environment& environment, const FunctionTable& functions);
  ~Evaluator();

  /// The result of the formula in the cell `at` of `sheet`. An unknown function gives #NAME?, a
  /// formula that cannot be parsed #NAME? as well; no exception for any formula. In the modes cell
  /// and array the result is a value or an array and never empty (a blank becomes 0).
  Operand evaluate(const CompiledFormula& formula, Sheet& sheet, CellPos at, EvaluationMode mode);
  /// True when the last evaluation was given up because cells were not ready; its result means
  /// nothing then.
  bool gave_up() const noexcept;
  /// True when the last evaluation used a function whose result changes without any cell changing
  /// (NOW, RAND), or whose references are not written in the formula (INDIRECT, OFFSET).
  bool was_volatile() const noexcept;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace qto::embedded
