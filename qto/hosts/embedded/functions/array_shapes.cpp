#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/blocks.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// A stretch of rows or columns from 0.
struct Stretch {
  int from = 0;
  int count = 0;
};

/// What TAKE leaves of `size` lines: from the start, or from the end when negative.
Stretch taken(double wanted, int size) {
  const double count = std::min(std::fabs(wanted), static_cast<double>(size));
  return {wanted < 0 ? size - static_cast<int>(count) : 0, static_cast<int>(count)};
}

Stretch dropped(double wanted, int size) {
  const int cut = static_cast<int>(std::min(std::fabs(wanted), static_cast<double>(size)));
  return {wanted < 0 ? 0 : cut, size - cut};
}

template <Stretch (*cut)(double, int)>
Operand fn_cut(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Shape shape = shape_of(call[0]);
  Stretch rows{0, shape.rows};
  Stretch columns{0, shape.columns};
  if (call.given(1)) rows = cut(std::trunc(call.number(1)), shape.rows);
  if (call.given(2)) columns = cut(std::trunc(call.number(2)), shape.columns);
  if (rows.count <= 0 || columns.count <= 0) return ErrorValue::calc;
  return part_of(call.context(), call[0], rows.from, columns.from, rows.count, columns.count);
}

template <bool rows>
Operand fn_choose_lines(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  const int size = rows ? grid.rows() : grid.columns();
  std::vector<int> lines;
  for (const Operand& argument : call.from(1)) {
    const Grid numbers(call.context(), argument);
    if (!numbers.is_vector()) return ErrorValue::value;
    for (std::int64_t i = 0; i < numbers.size(); ++i) {
      const auto number = to_number(numbers.nth(i), call.context().dates());
      if (!number) return number.error();
      const double line = std::trunc(*number);
      if (line == 0 || std::fabs(line) > size) return ErrorValue::value;
      lines.push_back(static_cast<int>(line > 0 ? line - 1 : size + line));
    }
  }
  const int count = static_cast<int>(lines.size());
  return build_array(call.context(), rows ? count : grid.rows(), rows ? grid.columns() : count,
                     [&](int row, int column) {
                       return grid
                           .at(rows ? lines[static_cast<std::size_t>(row)] : row,
                               rows ? column : lines[static_cast<std::size_t>(column)])
                           .to_variant();
                     });
}

/// Blocks one beside or below the other; the shorter ones are filled up with #N/A.
template <bool beside>
Operand fn_stack(Call& call) {
  std::vector<Grid> grids;
  int rows = 0;
  int columns = 0;
  for (const Operand& argument : call.from(0)) {
    grids.emplace_back(call.context(), argument);
    const Grid& grid = grids.back();
    rows = beside ? std::max(rows, grid.rows()) : rows + grid.rows();
    columns = beside ? columns + grid.columns() : std::max(columns, grid.columns());
    if (std::int64_t{rows} * columns > max_array_elements) return ErrorValue::num;
  }
  return build_array(call.context(), rows, columns, [&](int row, int column) -> Variant {
    std::size_t i = 0;
    while (beside ? column >= grids[i].columns() : row >= grids[i].rows()) {
      (beside ? column : row) -= beside ? grids[i].columns() : grids[i].rows();
      ++i;
    }
    if (row >= grids[i].rows() || column >= grids[i].columns()) return ErrorValue::na;
    return grids[i].at(row, column).to_variant();
  });
}

template <bool as_column>
Operand fn_unroll(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  const double ignore = std::trunc(call.number(1, 0));
  if (ignore < 0 || ignore > 3) return ErrorValue::value;
  if (grid.size() > max_array_elements) return ErrorValue::num;
  const bool by_column = call.logical(2, false);
  const int bits = static_cast<int>(ignore);
  std::vector<Variant> items;
  for (std::int64_t i = 0; i < grid.size(); ++i) {
    const ValueView value =
        by_column ? grid.at(static_cast<int>(i % grid.rows()), static_cast<int>(i / grid.rows()))
                  : grid.nth(i);
    if ((bits & 1) != 0 && value.is_empty()) continue;
    if ((bits & 2) != 0 && value.is_error()) continue;
    items.push_back(value.to_variant());
  }
  if (items.empty()) return ErrorValue::calc;
  const int count = static_cast<int>(items.size());
  return build_array(call.context(), as_column ? count : 1, as_column ? 1 : count,
                     [&](int row, int column) {
                       return items[static_cast<std::size_t>(as_column ? row : column)];
                     });
}

template <bool rows>
Operand fn_wrap(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  if (!grid.is_vector()) return ErrorValue::value;
  const double width = std::trunc(call.number(1));
  if (width < 1) return ErrorValue::num;
  const auto size = static_cast<double>(grid.size());
  const int across = static_cast<int>(std::min(width, size));
  const int down = static_cast<int>(std::ceil(size / width));
  const Variant pad = call.given(2) ? call.value(2).to_variant() : Variant(ErrorValue::na);
  return build_array(
      call.context(), rows ? down : across, rows ? across : down, [&](int row, int column) {
        const std::int64_t i =
            rows ? std::int64_t{row} * across + column : std::int64_t{column} * across + row;
        return i < grid.size() ? grid.nth(i).to_variant() : pad;
      });
}

Operand fn_expand(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  const double rows = call.given(1) ? std::trunc(call.number(1)) : grid.rows();
  const double columns = call.given(2) ? std::trunc(call.number(2)) : grid.columns();
  if (rows < grid.rows() || columns < grid.columns()) return ErrorValue::value;
  if (rows * columns > static_cast<double>(max_array_elements)) return ErrorValue::num;
  const Variant pad = call.given(3) ? call.value(3).to_variant() : Variant(ErrorValue::na);
  return build_array(
      call.context(), static_cast<int>(rows), static_cast<int>(columns), [&](int row, int column) {
        return row < grid.rows() && column < grid.columns() ? grid.at(row, column).to_variant()
                                                            : pad;
      });
}

/// Which ends of a block are cut: 1 leading, 2 trailing, 3 both.
Operand fn_trimrange(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  const double row_ends = call.given(1) ? std::trunc(call.number(1)) : 3;
  const double column_ends = call.given(2) ? std::trunc(call.number(2)) : 3;
  if (row_ends < 0 || row_ends > 3 || column_ends < 0 || column_ends > 3) return ErrorValue::value;
  int top = grid.rows(), bottom = -1, left = grid.columns(), right = -1;
  grid.for_each([&](int row, int column, const ValueView& value) {
    if (value.is_empty()) return true;
    top = std::min(top, row);
    bottom = std::max(bottom, row);
    left = std::min(left, column);
    right = std::max(right, column);
    return true;
  });
  if (bottom < 0) return ErrorValue::ref;
  const int cut_rows = static_cast<int>(row_ends);
  const int cut_columns = static_cast<int>(column_ends);
  if ((cut_rows & 1) == 0) top = 0;
  if ((cut_rows & 2) == 0) bottom = grid.rows() - 1;
  if ((cut_columns & 1) == 0) left = 0;
  if ((cut_columns & 2) == 0) right = grid.columns() - 1;
  return part_of(call.context(), call[0], top, left, bottom - top + 1, right - left + 1);
}

// clang-format off
constexpr FunctionSpec array_shape_table[] = {
    {"CHOOSECOLS", 2, any_count, plain, {Parameter::array, values}, fn_choose_lines<false>,
     "array, column1, ...", "some columns of an array", "=SUM(CHOOSECOLS({1,2,3},1,-1))", "4"},
    {"CHOOSEROWS", 2, any_count, plain, {Parameter::array, values}, fn_choose_lines<true>,
     "array, row1, ...", "some rows of an array", "=SUM(CHOOSEROWS({1;2;3},2,3))", "5"},
    {"DROP", 2, 3, gives_reference, {Parameter::array, number, number}, fn_cut<dropped>,
     "array, rows, [columns]", "an array without its first or last lines", "=SUM(DROP({1;2;3},1))",
     "5"},
    {"EXPAND", 2, 4, plain, {Parameter::array, number, number, any}, fn_expand,
     "array, rows, [columns], [pad]", "an array filled up to a size", "=SUM(EXPAND({1,2},2,2,5))",
     "13"},
    {"HSTACK", 1, any_count, plain, {Parameter::array}, fn_stack<true>, "array1, ...",
     "arrays side by side", "=COLUMNS(HSTACK({1,2},{3;4}))", "3"},
    {"TAKE", 2, 3, gives_reference, {Parameter::array, number, number}, fn_cut<taken>,
     "array, rows, [columns]", "the first or last lines of an array", "=SUM(TAKE({1;2;3},-2))",
     "5"},
    {"TOCOL", 1, 3, plain, {Parameter::array, number, logical}, fn_unroll<true>,
     "array, [ignore], [by_column]", "an array as one column", "=ROWS(TOCOL({1,2;3,4}))", "4"},
    {"TOROW", 1, 3, plain, {Parameter::array, number, logical}, fn_unroll<false>,
     "array, [ignore], [by_column]", "an array as one row", "=INDEX(TOROW({1,2;3,4},0,TRUE),2)",
     "3"},
    {"TRIMRANGE", 1, 3, gives_reference, {Parameter::array, number, number}, fn_trimrange,
     "range, [rows], [columns]", "a block without the blank lines around it",
     "=COLUMNS(TRIMRANGE({1,2}))", "2"},
    {"VSTACK", 1, any_count, plain, {Parameter::array}, fn_stack<false>, "array1, ...",
     "arrays one below the other", "=ROWS(VSTACK({1,2},{3;4}))", "3"},
    {"WRAPCOLS", 2, 3, plain, {Parameter::array, number, any}, fn_wrap<false>,
     "vector, height, [pad]", "a vector broken into columns", "=COLUMNS(WRAPCOLS({1,2,3},2))", "2"},
    {"WRAPROWS", 2, 3, plain, {Parameter::array, number, any}, fn_wrap<true>,
     "vector, width, [pad]", "a vector broken into rows", "=ROWS(WRAPROWS({1,2,3},2))", "2"},
};
// clang-format on
static_assert(well_formed(array_shape_table));

}  // namespace

std::span<const FunctionSpec> array_shape_functions() { return array_shape_table; }

}  // namespace qto::embedded::functions
