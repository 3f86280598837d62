#include "qto/hosts/embedded/functions/linear_algebra.hpp"

#include <cmath>

namespace qto::embedded::functions {

namespace {

void swap_rows(Matrix& matrix, int a, int b) {
  for (int column = 0; column < matrix.columns; ++column)
    std::swap(matrix.at(a, column), matrix.at(b, column));
}

/// The row from `from` down that has the largest element in a column.
int pivot_row(const Matrix& matrix, int from, int column) {
  int best = from;
  for (int row = from + 1; row < matrix.rows; ++row)
    if (std::fabs(matrix.at(row, column)) > std::fabs(matrix.at(best, column))) best = row;
  return best;
}

void subtract_row(Matrix& matrix, int target, int source, double factor) {
  if (factor == 0) return;
  for (int column = 0; column < matrix.columns; ++column)
    matrix.at(target, column) -= factor * matrix.at(source, column);
}

double largest(const Matrix& matrix) {
  double size = 0;
  for (const double item : matrix.items) size = std::max(size, std::fabs(item));
  return size;
}

}  // namespace

Matrix unit_matrix(int size) {
  Matrix unit(size, size);
  for (int i = 0; i < size; ++i) unit.at(i, i) = 1;
  return unit;
}

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result(a.rows, b.columns);
  for (int row = 0; row < a.rows; ++row)
    for (int inner = 0; inner < a.columns; ++inner)
      for (int column = 0; column < b.columns; ++column)
        result.at(row, column) += a.at(row, inner) * b.at(inner, column);
  return result;
}

Matrix transposed(const Matrix& matrix) {
  Matrix result(matrix.columns, matrix.rows);
  for (int row = 0; row < matrix.rows; ++row)
    for (int column = 0; column < matrix.columns; ++column)
      result.at(column, row) = matrix.at(row, column);
  return result;
}

std::optional<Matrix> inverse(Matrix matrix) {
  const int size = matrix.rows;
  const double noise = largest(matrix) * 1e-15;
  Matrix result = unit_matrix(size);
  for (int i = 0; i < size; ++i) {
    const int pivot = pivot_row(matrix, i, i);
    if (std::fabs(matrix.at(pivot, i)) <= noise) return std::nullopt;
    swap_rows(matrix, i, pivot);
    swap_rows(result, i, pivot);
    const double divisor = matrix.at(i, i);
    for (int column = 0; column < size; ++column) {
      matrix.at(i, column) /= divisor;
      result.at(i, column) /= divisor;
    }
    for (int row = 0; row < size; ++row) {
      if (row == i) continue;
      const double factor = matrix.at(row, i);
      subtract_row(matrix, row, i, factor);
      subtract_row(result, row, i, factor);
    }
  }
  return result;
}

double determinant(Matrix matrix) {
  double value = 1;
  for (int i = 0; i < matrix.rows; ++i) {
    const int pivot = pivot_row(matrix, i, i);
    if (matrix.at(pivot, i) == 0) return 0;
    if (pivot != i) {
      swap_rows(matrix, i, pivot);
      value = -value;
    }
    value *= matrix.at(i, i);
    for (int row = i + 1; row < matrix.rows; ++row)
      subtract_row(matrix, row, i, matrix.at(row, i) / matrix.at(i, i));
  }
  return value;
}

LeastSquares least_squares(const Matrix& x, const std::vector<double>& y) {
  // Orthogonalise the columns one after the other (modified Gram-Schmidt): x = q * r.
  Matrix q = x;
  Matrix r(x.columns, x.columns);
  std::vector<bool> independent(static_cast<std::size_t>(x.columns));
  LeastSquares fit;
  for (int column = 0; column < x.columns; ++column) {
    double before = 0;
    for (int row = 0; row < x.rows; ++row) before += x.at(row, column) * x.at(row, column);
    // Twice, so that what the first pass leaves of the other columns is gone too.
    for (int pass = 0; pass < 2; ++pass)
      for (int other = 0; other < column; ++other) {
        if (!independent[static_cast<std::size_t>(other)]) continue;
        double dot = 0;
        for (int row = 0; row < x.rows; ++row) dot += q.at(row, other) * q.at(row, column);
        r.at(other, column) += dot;
        for (int row = 0; row < x.rows; ++row) q.at(row, column) -= dot * q.at(row, other);
      }
    double norm = 0;
    for (int row = 0; row < x.rows; ++row) norm += q.at(row, column) * q.at(row, column);
    if (norm <= before * 1e-26 || norm == 0) continue;
    norm = std::sqrt(norm);
    r.at(column, column) = norm;
    for (int row = 0; row < x.rows; ++row) q.at(row, column) /= norm;
    independent[static_cast<std::size_t>(column)] = true;
    ++fit.rank;
  }
  fit.coefficients.assign(static_cast<std::size_t>(x.columns), 0);
  fit.variances.assign(static_cast<std::size_t>(x.columns), 0);
  // Back substitution over the independent columns; the inverse of r gives the variances.
  Matrix inverse_r(x.columns, x.columns);
  for (int i = x.columns - 1; i >= 0; --i) {
    if (!independent[static_cast<std::size_t>(i)]) continue;
    double value = 0;
    for (int row = 0; row < x.rows; ++row) value += q.at(row, i) * y[static_cast<std::size_t>(row)];
    for (int j = i + 1; j < x.columns; ++j)
      value -= r.at(i, j) * fit.coefficients[static_cast<std::size_t>(j)];
    fit.coefficients[static_cast<std::size_t>(i)] = value / r.at(i, i);
    inverse_r.at(i, i) = 1 / r.at(i, i);
    for (int j = i + 1; j < x.columns; ++j) {
      double sum = 0;
      for (int k = i + 1; k <= j; ++k) sum += r.at(i, k) * inverse_r.at(k, j);
      inverse_r.at(i, j) = -sum / r.at(i, i);
    }
    for (int j = i; j < x.columns; ++j)
      fit.variances[static_cast<std::size_t>(i)] += inverse_r.at(i, j) * inverse_r.at(i, j);
  }
  return fit;
}

}  // namespace qto::embedded::functions
