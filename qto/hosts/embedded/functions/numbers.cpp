#include "qto/hosts/embedded/functions/numbers.hpp"

#include "qto/hosts/embedded/evaluate/operators.hpp"

namespace qto::embedded::functions {

Outcome<std::vector<double>> collect_numbers(Context& context, std::span<const Operand> arguments,
                                             Counting counting) {
  std::vector<double> numbers;
  const auto error = visit_numbers(context, arguments, counting,
                                   [&](double number) { numbers.push_back(number); });
  if (error) return *error;
  return numbers;
}

Outcome<NumberPairs> collect_pairs(Context& context, const Operand& first, const Operand& second) {
  if (first.error()) return *first.error();
  if (second.error()) return *second.error();
  const Grid a(context, first);
  const Grid b(context, second);
  if (context.gave_up()) return ErrorValue::na;
  if (a.size() != b.size()) return ErrorValue::na;
  NumberPairs pairs;
  const std::int64_t size =
      a.columns() == b.columns()
          ? std::int64_t{std::max(a.stored_rows(), b.stored_rows())} * a.columns()
          : a.size();
  for (std::int64_t i = 0; i < size; ++i) {
    const ValueView x = a.nth(i);
    const ValueView y = b.nth(i);
    if (x.is_error()) return x.error();
    if (y.is_error()) return y.error();
    if (!x.is_number() || !y.is_number()) continue;
    pairs.first.push_back(x.number());
    pairs.second.push_back(y.number());
  }
  return pairs;
}

Outcome<Matrix> to_matrix(Context& context, const Operand& operand) {
  const Grid grid(context, operand);
  if (context.gave_up()) return ErrorValue::na;
  if (grid.size() > max_array_elements) return ErrorValue::num;
  Matrix matrix(grid.rows(), grid.columns());
  for (int row = 0; row < grid.rows(); ++row)
    for (int column = 0; column < grid.columns(); ++column) {
      const ValueView value = grid.at(row, column);
      if (value.is_error()) return value.error();
      if (!value.is_number()) return ErrorValue::value;
      matrix.at(row, column) = value.number();
    }
  return matrix;
}

Operand to_operand(const Matrix& matrix) {
  auto result = make_ref<VariantArray>(matrix.rows, matrix.columns);
  for (int row = 0; row < matrix.rows; ++row)
    for (int column = 0; column < matrix.columns; ++column)
      result->at(row + 1, column + 1) = finite(matrix.at(row, column));
  return Ref<const VariantArray>(result);
}

}  // namespace qto::embedded::functions
