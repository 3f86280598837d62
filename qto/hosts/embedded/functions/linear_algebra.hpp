#pragma once

#include <optional>

#include "qto/hosts/embedded/functions/numbers.hpp"

namespace qto::embedded::functions {

Matrix unit_matrix(int size);
/// a.columns == b.rows.
Matrix product(const Matrix& a, const Matrix& b);
Matrix transposed(const Matrix& matrix);
/// Of a square matrix; nothing when it is singular.
std::optional<Matrix> inverse(Matrix matrix);
double determinant(Matrix matrix);

/// Coefficients of the least squares fit of y by the columns of x: minimises |x * b - y|. Columns
/// that depend on others get 0; `rank` is how many do not.
struct LeastSquares {
  std::vector<double> coefficients;
  /// Diagonal of the inverse of x'x, for standard errors; 0 for dependent columns.
  std::vector<double> variances;
  int rank = 0;
};
LeastSquares least_squares(const Matrix& x, const std::vector<double>& y);

}  // namespace qto::embedded::functions
