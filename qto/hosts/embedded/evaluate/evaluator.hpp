#pragma once

#include <memory>

#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/operand.hpp"
#include "qto/hosts/embedded/formula/compiled_formula.hpp"

namespace qto::embedded {

enum class EvaluationMode : std::uint8_t {
  cell,       ///< an ordinary formula: references where a value is wanted intersect with the cell
  array,      ///< an array formula: every operation runs over all elements
  reference,  ///< keep a reference as it is (names, Evaluate, INDIRECT-like callers)
};

/// Evaluates compiled formulas. One evaluator serves many formulas of many books.
class Evaluator {
 public:
  explicit Evaluator(Environment& environment);
  ~Evaluator();

  /// The result of the formula in the cell `at` of `sheet`. An unknown function gives #NAME?, a
  /// formula that cannot be parsed #NAME? as well; no exception for any formula.
  Operand evaluate(const CompiledFormula& formula, Sheet& sheet, CellPos at, EvaluationMode mode);
  /// True when the last evaluation was given up because cells were not ready; its result means
  /// nothing then.
  bool gave_up() const noexcept;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace qto::embedded
