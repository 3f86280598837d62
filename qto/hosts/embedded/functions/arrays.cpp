#include <algorithm>
#include <cmath>
#include <numeric>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/compare.hpp"
#include "qto/hosts/embedded/functions/blocks.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Rows or columns of a grid, told by their numbers, as an array.
Operand pick(Call& call, const Grid& grid, const std::vector<int>& lines, bool rows) {
  if (lines.empty()) return ErrorValue::calc;
  const int count = static_cast<int>(lines.size());
  return build_array(call.context(), rows ? count : grid.rows(), rows ? grid.columns() : count,
                     [&](int row, int column) {
                       return grid
                           .at(rows ? lines[static_cast<std::size_t>(row)] : row,
                               rows ? column : lines[static_cast<std::size_t>(column)])
                           .to_variant();
                     });
}

Operand fn_sequence(Call& call) {
  const double rows = call.given(0) ? std::trunc(call.number(0)) : 1;
  const double columns = call.given(1) ? std::trunc(call.number(1)) : 1;
  const double start = call.given(2) ? call.number(2) : 1;
  const double step = call.given(3) ? call.number(3) : 1;
  if (rows < 0 || columns < 0) return ErrorValue::value;
  if (rows == 0 || columns == 0) return ErrorValue::calc;
  if (rows * columns > static_cast<double>(max_array_elements)) return ErrorValue::num;
  return build_array(call.context(), static_cast<int>(rows), static_cast<int>(columns),
                     [&](int row, int column) { return start + (row * columns + column) * step; });
}

Operand fn_randarray(Call& call) {
  const double rows = call.given(0) ? std::trunc(call.number(0)) : 1;
  const double columns = call.given(1) ? std::trunc(call.number(1)) : 1;
  const double low = call.given(2) ? call.number(2) : 0;
  const double high = call.given(3) ? call.number(3) : 1;
  const bool whole = call.logical(4, false);
  if (rows < 1 || columns < 1 || low > high) return ErrorValue::value;
  if (rows * columns > static_cast<double>(max_array_elements)) return ErrorValue::num;
  return build_array(
      call.context(), static_cast<int>(rows), static_cast<int>(columns), [&](int, int) {
        const double chance = call.context().environment().random();
        return whole ? std::ceil(low) + std::floor(chance * (std::floor(high) - std::ceil(low) + 1))
                     : low + chance * (high - low);
      });
}

Operand fn_filter(Call& call) {
  for (const int i : {0, 1})
    if (const auto error = refusal(call[i])) return *error;
  const Grid grid(call.context(), call[0]);
  const Grid include(call.context(), call[1]);
  const bool by_row = include.columns() == 1 && include.rows() == grid.rows();
  const bool by_column = include.rows() == 1 && include.columns() == grid.columns();
  if (!by_row && !by_column) return ErrorValue::value;
  std::vector<int> kept;
  for (int i = 0; i < include.size(); ++i) {
    const auto flag = to_logical(include.nth(i));
    if (!flag) return flag.error();
    if (*flag) kept.push_back(i);
  }
  if (!kept.empty()) return pick(call, grid, kept, by_row);
  return call.given(2) ? call[2] : Operand(ErrorValue::calc);
}

/// Order of two values when sorting: errors behind all, blanks behind those whatever the direction.
int sort_order(const ValueView& a, const ValueView& b, bool descending) {
  if (a.is_empty() || b.is_empty()) return static_cast<int>(a.is_empty()) - b.is_empty();
  const int order = compare_values(a, b);
  return descending ? -order : order;
}

Operand fn_sort(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  const bool by_column = call.logical(3, false);
  const int count = by_column ? grid.columns() : grid.rows();
  const int width = by_column ? grid.rows() : grid.columns();
  const Operand one(1.0);
  const Grid keys(call.context(), call.given(1) ? call[1] : one);
  const Grid directions(call.context(), call.given(2) ? call[2] : one);
  if (directions.size() != 1 && directions.size() != keys.size()) return ErrorValue::value;
  struct Key {
    int line;
    bool descending;
  };
  std::vector<Key> order;
  for (int i = 0; i < keys.size(); ++i) {
    const auto key = to_number(keys.nth(i), call.context().dates());
    const auto direction =
        to_number(directions.nth(directions.size() == 1 ? 0 : i), call.context().dates());
    if (!key) return key.error();
    if (!direction) return direction.error();
    if (*key < 1 || *key >= width + 1.0) return ErrorValue::value;
    if (*direction != 1 && *direction != -1) return ErrorValue::value;
    order.push_back({static_cast<int>(*key) - 1, *direction < 0});
  }
  std::vector<int> lines(static_cast<std::size_t>(count));
  std::iota(lines.begin(), lines.end(), 0);
  std::stable_sort(lines.begin(), lines.end(), [&](int a, int b) {
    for (const Key& key : order) {
      const int result =
          by_column ? sort_order(grid.at(key.line, a), grid.at(key.line, b), key.descending)
                    : sort_order(grid.at(a, key.line), grid.at(b, key.line), key.descending);
      if (result != 0) return result < 0;
    }
    return false;
  });
  return pick(call, grid, lines, !by_column);
}

Operand fn_sortby(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  std::vector<Grid> keys;
  std::vector<bool> descending;
  bool by_row = true;
  for (int i = 1; i < call.count(); i += 2) {
    if (const auto error = refusal(call[i])) return *error;
    keys.emplace_back(call.context(), call[i]);
    const bool column = keys.back().columns() == 1 && keys.back().rows() == grid.rows();
    const bool row = keys.back().rows() == 1 && keys.back().columns() == grid.columns();
    if (!column && !row) return ErrorValue::value;
    if (i == 1) by_row = column;
    const double direction = call.given(i + 1) ? call.number(i + 1) : 1;
    if (direction != 1 && direction != -1) return ErrorValue::value;
    descending.push_back(direction < 0);
  }
  std::vector<int> lines(static_cast<std::size_t>(by_row ? grid.rows() : grid.columns()));
  for (const Grid& key : keys)
    if (key.size() != static_cast<std::int64_t>(lines.size())) return ErrorValue::value;
  std::iota(lines.begin(), lines.end(), 0);
  std::stable_sort(lines.begin(), lines.end(), [&](int a, int b) {
    for (std::size_t i = 0; i < keys.size(); ++i)
      if (const int result = sort_order(keys[i].nth(a), keys[i].nth(b), descending[i]))
        return result < 0;
    return false;
  });
  return pick(call, grid, lines, by_row);
}

Operand fn_unique(Call& call) {
  if (const auto error = refusal(call[0])) return *error;
  const Grid grid(call.context(), call[0]);
  const bool by_column = call.logical(1, false);
  const int count = by_column ? grid.columns() : grid.rows();
  const int width = by_column ? grid.rows() : grid.columns();
  // Sorting brings equal lines together; a stable sort keeps the first of each in front.
  const auto order = [&](int a, int b) {
    for (int i = 0; i < width; ++i) {
      const ValueView x = by_column ? grid.at(i, a) : grid.at(a, i);
      const ValueView y = by_column ? grid.at(i, b) : grid.at(b, i);
      if (x.is_empty() != y.is_empty()) return x.is_empty() ? 1 : -1;
      if (const int result = x.is_empty() ? 0 : compare_values(x, y)) return result;
    }
    return 0;
  };
  std::vector<int> lines(static_cast<std::size_t>(count));
  std::iota(lines.begin(), lines.end(), 0);
  std::stable_sort(lines.begin(), lines.end(), [&](int a, int b) { return order(a, b) < 0; });
  const bool once_only = call.logical(2, false);
  std::vector<int> kept;
  for (std::size_t i = 0; i < lines.size();) {
    std::size_t end = i + 1;
    while (end < lines.size() && order(lines[i], lines[end]) == 0) ++end;
    if (!once_only || end == i + 1) kept.push_back(lines[i]);
    i = end;
  }
  std::ranges::sort(kept);
  return pick(call, grid, kept, !by_column);
}

// clang-format off
constexpr FunctionSpec array_table[] = {
    {"FILTER", 2, 3, plain, {Parameter::array, Parameter::array, values}, fn_filter,
     "array, include, [if_empty]", "the rows or columns whose condition is true",
     "=SUM(FILTER({1;2;3},{TRUE;FALSE;TRUE}))", "4"},
    {"RANDARRAY", 0, 5, changes_always, {number, number, number, number, logical}, fn_randarray,
     "[rows], [columns], [min], [max], [whole]", "an array of random numbers",
     "=SUM(RANDARRAY(2,2,3,3))", "12"},
    {"SEQUENCE", 1, 4, plain, {number}, fn_sequence, "rows, [columns], [start], [step]",
     "an array of numbers in steps", "=SUM(SEQUENCE(3,2))", "21"},
    {"SORT", 1, 4, plain, {Parameter::array, values, values, logical}, fn_sort,
     "array, [index], [order], [by_column]", "the rows or columns in order",
     "=INDEX(SORT({3;1;2},1,-1),1)", "3"},
    {"SORTBY", 2, any_count, repeats_pair, {Parameter::array, Parameter::array, number}, fn_sortby,
     "array, by_array1, [order1], ...", "the rows or columns in the order of other values",
     "=INDEX(SORTBY({\"a\";\"b\"},{2;1}),1)", "b"},
    {"UNIQUE", 1, 3, plain, {Parameter::array, logical, logical}, fn_unique,
     "array, [by_column], [exactly_once]", "the rows or columns without repetitions",
     "=ROWS(UNIQUE({1;2;1}))", "2"},
};
// clang-format on
static_assert(well_formed(array_table));

}  // namespace

std::span<const FunctionSpec> array_functions() { return array_table; }

}  // namespace qto::embedded::functions
