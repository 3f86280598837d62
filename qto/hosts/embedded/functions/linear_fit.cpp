#include <cmath>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/linear_algebra.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Known values in the shape of the fit: one observation a row, the constant last.
struct Observations {
  Matrix x;
  std::vector<double> y;
  int variables = 0;
  bool constant = true;
  bool y_is_row = false;
};

Outcome<Observations> observe(Call& call, bool exponential) {
  const auto y = to_matrix(call.context(), call[0]);
  if (!y) return y.error();
  Observations data;
  data.constant = call.count() < 3 || !call.given(2) || call.logical(2);
  data.y = y->items;
  data.y_is_row = y->rows == 1 && y->columns > 1;
  if (exponential)
    for (double& value : data.y) {
      if (value <= 0) return ErrorValue::num;
      value = std::log(value);
    }
  Matrix x(static_cast<int>(data.y.size()), 1);
  if (call.given(1)) {
    const auto given = to_matrix(call.context(), call[1]);
    if (!given) return given.error();
    if (given->items.size() == data.y.size())
      x.items = given->items;
    else if (y->columns == 1 && given->rows == y->rows)
      x = *given;
    else if (y->rows == 1 && given->columns == y->columns)
      x = transposed(*given);
    else
      return ErrorValue::ref;
  } else {
    for (int i = 0; i < x.rows; ++i) x.at(i, 0) = i + 1;
  }
  data.variables = x.columns;
  data.x = Matrix(x.rows, x.columns + (data.constant ? 1 : 0));
  for (int row = 0; row < x.rows; ++row) {
    // The constant comes first, so that it is a variable that gives way when they depend.
    if (data.constant) data.x.at(row, 0) = 1;
    for (int column = 0; column < x.columns; ++column)
      data.x.at(row, column + (data.constant ? 1 : 0)) = x.at(row, column);
  }
  return data;
}

/// The statistics of a fit: sums of squares and degrees of freedom.
struct Quality {
  double residual = 0;
  double regression = 0;
  double degrees = 0;
};

Quality quality_of(const Observations& data, const LeastSquares& fit) {
  double mean = 0;
  if (data.constant) {
    for (const double y : data.y) mean += y;
    mean /= static_cast<double>(data.y.size());
  }
  Quality quality;
  for (int row = 0; row < data.x.rows; ++row) {
    double estimate = 0;
    for (int column = 0; column < data.x.columns; ++column)
      estimate += data.x.at(row, column) * fit.coefficients[static_cast<std::size_t>(column)];
    const double y = data.y[static_cast<std::size_t>(row)];
    quality.residual += (y - estimate) * (y - estimate);
    quality.regression += (estimate - mean) * (estimate - mean);
  }
  quality.degrees = data.x.rows - fit.rank;
  return quality;
}

/// The row that LINEST and LOGEST give: coefficients from the last variable, then the constant.
template <class Coefficient>
void set_row(VariantArray& result, int row, const Observations& data, Coefficient&& value) {
  const int shift = data.constant ? 1 : 0;
  for (int i = 0; i < data.variables; ++i) result.at(row, data.variables - i) = value(i + shift);
  if (data.constant) result.at(row, data.variables + 1) = value(0);
}

void set_statistics(VariantArray& result, const Observations& data, const LeastSquares& fit) {
  const Quality quality = quality_of(data, fit);
  const double error = quality.degrees > 0 ? std::sqrt(quality.residual / quality.degrees) : 0;
  for (int row = 2; row <= 5; ++row)
    for (int column = 1; column <= result.columns(); ++column)
      result.at(row, column) = ErrorValue::na;
  set_row(result, 2, data, [&](int i) -> Variant {
    return error * std::sqrt(fit.variances[static_cast<std::size_t>(i)]);
  });
  const double total = quality.regression + quality.residual;
  const double variables = fit.rank - (data.constant ? 1 : 0);
  result.at(3, 1) = total == 0 ? Variant(1.0) : Variant(quality.regression / total);
  result.at(3, 2) = error;
  const bool has_f = quality.degrees > 0 && quality.residual > 0 && variables > 0;
  result.at(4, 1) =
      has_f ? Variant(quality.regression / variables / (quality.residual / quality.degrees))
            : Variant(ErrorValue::num);
  result.at(4, 2) = quality.degrees;
  result.at(5, 1) = quality.regression;
  result.at(5, 2) = quality.residual;
}

template <bool exponential>
Operand fn_fit(Call& call) {
  const auto data = observe(call, exponential);
  if (!data) return data.error();
  const LeastSquares fit = least_squares(data->x, data->y);
  const bool statistics = call.logical(3, false);
  auto result = make_ref<VariantArray>(statistics ? 5 : 1, data->variables + 1);
  set_row(*result, 1, *data, [&](int i) -> Variant {
    const double value = fit.coefficients[static_cast<std::size_t>(i)];
    return exponential ? std::exp(value) : value;
  });
  if (!data->constant) result->at(1, data->variables + 1) = exponential ? 1.0 : 0.0;
  if (statistics) {
    set_statistics(*result, *data, fit);
    if (!data->constant) result->at(2, data->variables + 1) = ErrorValue::na;
  }
  return Ref<const VariantArray>(result);
}

/// Values of the fit at new places, in the shape of those places.
template <bool exponential>
Operand fn_extend(Call& call) {
  const bool constant = call.count() < 4 || !call.given(3) || call.logical(3);
  std::vector<Operand> known(call.from(0).begin(),
                             call.from(0).begin() + std::min(call.count(), 2));
  while (known.size() < 2) known.emplace_back();
  known.emplace_back(constant);
  Call fit_call(call.context(), known, call.array());
  const auto data = observe(fit_call, exponential);
  if (!data) return data.error();
  const LeastSquares fit = least_squares(data->x, data->y);
  const int shift = data->constant ? 1 : 0;
  Matrix places;
  bool transposed_places = false;
  if (call.given(2) || call.given(1)) {
    const auto given = to_matrix(call.context(), call.given(2) ? call[2] : call[1]);
    if (!given) return given.error();
    places = *given;
    if (data->variables > 1) {
      transposed_places = data->y_is_row;
      if (transposed_places) places = transposed(places);
      if (places.columns != data->variables) return ErrorValue::ref;
    }
  } else {
    places = Matrix(data->x.rows, 1);
    for (int i = 0; i < places.rows; ++i) places.at(i, 0) = i + 1;
    if (data->y_is_row) places = transposed(places);
  }
  const auto value = [&](auto&& at) {
    double sum = shift ? fit.coefficients[0] : 0;
    for (int i = 0; i < data->variables; ++i)
      sum += fit.coefficients[static_cast<std::size_t>(i + shift)] * at(i);
    return exponential ? std::exp(sum) : sum;
  };
  if (data->variables == 1) {
    Matrix result(places.rows, places.columns);
    for (std::size_t i = 0; i < places.items.size(); ++i)
      result.items[i] = value([&](int) { return places.items[i]; });
    return to_operand(result);
  }
  Matrix result(places.rows, 1);
  for (int row = 0; row < places.rows; ++row)
    result.at(row, 0) = value([&](int i) { return places.at(row, i); });
  return to_operand(transposed_places ? transposed(result) : result);
}

// clang-format off
constexpr FunctionSpec linear_fit_table[] = {
    {"GROWTH", 1, 4, plain, {Parameter::array, Parameter::array, Parameter::array, logical},
     fn_extend<true>, "known_y, [known_x], [new_x], [constant]",
     "values on the exponential curve of best fit", "=ROUND(GROWTH({2,4,8},{1,2,3},4),6)", "16"},
    {"LINEST", 1, 4, plain, {Parameter::array, Parameter::array, logical, logical}, fn_fit<false>,
     "known_y, [known_x], [constant], [statistics]", "the line of best fit and how well it fits",
     "=ROUND(INDEX(LINEST({3,5,7},{1,2,3}),1,2),6)", "1"},
    {"LOGEST", 1, 4, plain, {Parameter::array, Parameter::array, logical, logical}, fn_fit<true>,
     "known_y, [known_x], [constant], [statistics]",
     "the exponential curve of best fit and how well it fits",
     "=ROUND(INDEX(LOGEST({2,4,8},{1,2,3}),1,1),6)", "2"},
    {"TREND", 1, 4, plain, {Parameter::array, Parameter::array, Parameter::array, logical},
     fn_extend<false>, "known_y, [known_x], [new_x], [constant]", "values on the line of best fit",
     "=ROUND(TREND({3,5,7},{1,2,3},4),6)", "9"},
};
// clang-format on
static_assert(well_formed(linear_fit_table));

}  // namespace

std::span<const FunctionSpec> linear_fit_functions() { return linear_fit_table; }

}  // namespace qto::embedded::functions
