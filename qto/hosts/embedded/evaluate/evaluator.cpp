#include "qto/hosts/embedded/evaluate/evaluator.hpp"

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/walker.hpp"

namespace qto::embedded {

struct Evaluator::Impl {
  Impl(Environment& environment, const FunctionTable& functions) : walker(environment, functions) {}
  Operand settle(const Operand& result, EvaluationMode mode);
  Walker walker;
};

namespace {

/// What a cell shows: a formula that gives a blank shows 0.
Variant shown(const ValueView& value) {
  return value.is_empty() ? Variant(0.0) : value.to_variant();
}

}  // namespace

Operand Evaluator::Impl::settle(const Operand& result, EvaluationMode mode) {
  // A function that nobody calls has no value to show.
  if (result.value() && result.value()->is_object()) return ErrorValue::calc;
  if (mode == EvaluationMode::cell) return shown(walker.single(result));
  if (mode == EvaluationMode::cell_value) return walker.single(result).to_variant();
  if (mode == EvaluationMode::array) {
    const Grid grid(walker, result);
    if (grid.size() == 1) return shown(grid.at(0, 0));
    return build_array(walker, grid.rows(), grid.columns(),
                       [&](int row, int column) { return shown(grid.at(row, column)); });
  }
  // The cells of a book that is not open can be read, but nobody outside can hold them.
  if (result.is_reference() && walker.is_closed(result.areas().front().sheet->book()))
    return walker.dereference(result);
  return result;
}

Evaluator::Evaluator(Environment& environment, const FunctionTable& functions)
    : impl_(std::make_unique<Impl>(environment, functions)) {}
Evaluator::~Evaluator() = default;

Operand Evaluator::evaluate(const CompiledFormula& formula, Sheet& sheet, CellPos at,
                            EvaluationMode mode) {
  const formula::SyntaxTree* tree = formula.tree();
  if (!tree || tree->root == formula::no_node) return ErrorValue::name;
  const bool cell = mode != EvaluationMode::array && mode != EvaluationMode::reference;
  const Operand result = impl_->walker.walk(*tree, {&sheet.book(), &sheet, at}, !cell, cell);
  return impl_->settle(result, mode);
}

bool Evaluator::gave_up() const noexcept { return impl_->walker.gave_up(); }
bool Evaluator::was_volatile() const noexcept { return impl_->walker.was_volatile(); }

}  // namespace qto::embedded
