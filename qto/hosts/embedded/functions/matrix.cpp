#include <cmath>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/linear_algebra.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_mmult(Call& call) {
  const auto a = to_matrix(call.context(), call[0]);
  if (!a) return a.error();
  const auto b = to_matrix(call.context(), call[1]);
  if (!b) return b.error();
  if (a->columns != b->rows) return ErrorValue::value;
  return to_operand(product(*a, *b));
}

Operand fn_minverse(Call& call) {
  const auto matrix = to_matrix(call.context(), call[0]);
  if (!matrix) return matrix.error();
  if (matrix->rows != matrix->columns) return ErrorValue::value;
  const auto inverted = inverse(*matrix);
  return inverted ? to_operand(*inverted) : Operand(ErrorValue::num);
}

Operand fn_mdeterm(Call& call) {
  const auto matrix = to_matrix(call.context(), call[0]);
  if (!matrix) return matrix.error();
  if (matrix->rows != matrix->columns) return ErrorValue::value;
  return determinant(*matrix);
}

Operand fn_munit(Call& call) {
  const double size = std::trunc(call.number(0));
  if (size < 1) return ErrorValue::value;
  if (size > 2000) return ErrorValue::num;
  return to_operand(unit_matrix(static_cast<int>(size)));
}

// clang-format off
constexpr FunctionSpec matrix_table[] = {
    {"MDETERM", 1, 1, plain, {Parameter::array}, fn_mdeterm, "array",
     "the determinant of a square matrix", "=MDETERM({1,2;3,4})", "-2"},
    {"MINVERSE", 1, 1, plain, {Parameter::array}, fn_minverse, "array",
     "the inverse of a square matrix", "=INDEX(MINVERSE({2,0;0,4}),2,2)", "0.25"},
    {"MMULT", 2, 2, plain, {Parameter::array}, fn_mmult, "array1, array2",
     "the product of two matrices", "=MMULT({1,2},{3;4})", "11"},
    {"MUNIT", 1, 1, plain, {number}, fn_munit, "size", "the unit matrix", "=SUM(MUNIT(3))", "3"},
};
// clang-format on
static_assert(well_formed(matrix_table));

}  // namespace

std::span<const FunctionSpec> matrix_functions() { return matrix_table; }

}  // namespace qto::embedded::functions
