#pragma once

#include <algorithm>

#include "qto/hosts/embedded/evaluate/grid.hpp"

namespace qto::embedded {

/// An array of that many rows and columns from element(row, column), which count from 0. Stops and
/// gives #N/A when the evaluation is given up, and #NUM! when the array would be too large.
template <class Element>
Operand build_array(Context& context, int rows, int columns, Element&& element) {
  if (std::int64_t{rows} * columns > max_array_elements) return ErrorValue::num;
  auto result = make_ref<VariantArray>(rows, columns);
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      result->at(row + 1, column + 1) = element(row, column);
      if (context.gave_up()) return ErrorValue::na;
    }
  return Ref<const VariantArray>(result);
}

/// The shape that arrays of these shapes give when they are combined element by element.
template <class... Grids>
std::pair<int, int> combined_shape(const Grids&... grids) {
  return {std::max({grids.rows()...}), std::max({grids.columns()...})};
}

}  // namespace qto::embedded
