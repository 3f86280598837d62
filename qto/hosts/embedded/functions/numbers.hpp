#pragma once

#include <optional>
#include <span>
#include <vector>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/grid.hpp"

/// The numbers that aggregates see in their arguments.
namespace qto::embedded::functions {

/// What counts as a number inside references and arrays.
enum class Counting {
  numbers,   ///< numbers only (SUM)
  anything,  ///< texts as 0, Booleans as 1 and 0 (AVERAGEA)
};

/// The number that an element of a reference or array counts as, or nothing.
inline std::optional<double> counted(const ValueView& value, Counting counting) noexcept {
  if (value.is_number()) return value.number();
  if (counting == Counting::numbers) return std::nullopt;
  if (value.is_boolean()) return value.boolean() ? 1.0 : 0.0;
  if (value.is_text()) return 0.0;
  return std::nullopt;
}

/// Visits the elements of one reference block or array row by row, up to an error.
template <class Visit>
std::optional<ErrorValue> visit_elements(Context& context, const Operand& operand,
                                         Counting counting, Visit&& visit) {
  const Grid grid(context, operand);
  if (context.gave_up()) return ErrorValue::na;
  std::optional<ErrorValue> error;
  // The order shows in the last digits of sums.
  grid.for_each_by_row([&](int, int, const ValueView& value) {
    if (value.is_error())
      error = value.error();
    else if (const auto number = counted(value, counting))
      visit(*number);
    return !error;
  });
  return error;
}

/// Visits the numbers of arguments of the kind `values`: single values are made numbers (a blank
/// argument is 0), in references and arrays only what `counting` says counts. Gives the first
/// error.
template <class Visit>
std::optional<ErrorValue> visit_numbers(Context& context, std::span<const Operand> arguments,
                                        Counting counting, Visit&& visit) {
  for (const Operand& argument : arguments) {
    if (argument.is_reference()) {
      for (const Area& area : argument.areas())
        if (const auto error = visit_elements(context, area, counting, visit)) return error;
    } else if (argument.is_array()) {
      if (const auto error = visit_elements(context, argument, counting, visit)) return error;
    } else {
      const auto number = to_number(context.single(argument), context.dates());
      if (!number) return number.error();
      visit(*number);
    }
  }
  return std::nullopt;
}

/// The numbers of the arguments in a list, row by row.
Outcome<std::vector<double>> collect_numbers(Context& context, std::span<const Operand> arguments,
                                             Counting counting = Counting::numbers);

/// Pairs of numbers that stand at the same place of two arguments; places where either is no number
/// are left out. #N/A when the arguments differ in size.
struct NumberPairs {
  std::vector<double> first, second;
};
Outcome<NumberPairs> collect_pairs(Context& context, const Operand& first, const Operand& second);

/// A rectangle of numbers; #VALUE! when any element is none.
struct Matrix {
  int rows = 0;
  int columns = 0;
  std::vector<double> items;
  Matrix() = default;
  Matrix(int row_count, int column_count)
      : rows(row_count),
        columns(column_count),
        items(static_cast<std::size_t>(row_count) * column_count) {}
  double& at(int row, int column) {
    return items[static_cast<std::size_t>(row) * columns + column];
  }
  double at(int row, int column) const {
    return items[static_cast<std::size_t>(row) * columns + column];
  }
};
Outcome<Matrix> to_matrix(Context& context, const Operand& operand);
Operand to_operand(const Matrix& matrix);

}  // namespace qto::embedded::functions
