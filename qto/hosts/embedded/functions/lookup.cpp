#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/blocks.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/vector_search.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

using Position = std::optional<std::int64_t>;

/// The error that an operand stands for where a block of values is wanted.
std::optional<ErrorValue> block_error(const Operand& operand) {
  if (operand.error()) return *operand.error();
  if (operand.is_missing() || operand.areas().size() > 1) return ErrorValue::value;
  return std::nullopt;
}

/// VLOOKUP and HLOOKUP: `across` is false for columns.
Operand look_up_in_table(Call& call, bool across) {
  const Operand& table = call[1];
  if (const auto error = block_error(table)) return *error;
  const Shape shape = shape_of(table);
  if (!table.is_reference() && !table.is_array() && call.context().single(table).is_text())
    return ErrorValue::value;
  const bool sorted = call.logical(3, true);
  const Operand keys = across ? part_of(call.context(), table, 0, 0, 1, shape.columns)
                              : part_of(call.context(), table, 0, 0, shape.rows, 1);
  const Vector vector(call.context(), keys);
  if (call.context().gave_up()) return ErrorValue::na;
  const Wanted wanted(call.value(0), !sorted);
  const Position found =
      sorted ? find_sorted(vector, wanted) : find_equal(call.context(), vector, wanted);
  if (!found) return ErrorValue::na;
  const double wanted_index = std::trunc(call.number(2));
  if (wanted_index < 1) return ErrorValue::value;
  if (wanted_index > (across ? shape.rows : shape.columns)) return ErrorValue::ref;
  const int index = static_cast<int>(wanted_index) - 1;
  const int at = static_cast<int>(*found);
  return across ? part_of(call.context(), table, index, at, 1, 1)
                : part_of(call.context(), table, at, index, 1, 1);
}

/// A result is a value, although it may have been read from a cell.
Operand as_value(Call& call, const Operand& result) {
  return result.is_reference() ? Operand(call.context().single(result).to_variant()) : result;
}

Operand fn_vlookup(Call& call) { return as_value(call, look_up_in_table(call, false)); }
Operand fn_hlookup(Call& call) { return as_value(call, look_up_in_table(call, true)); }

Operand fn_match(Call& call) {
  if (const auto error = block_error(call[1])) return *error;
  const Shape shape = shape_of(call[1]);
  if (shape.rows > 1 && shape.columns > 1) return ErrorValue::na;
  const Vector vector(call.context(), call[1]);
  if (call.context().gave_up()) return ErrorValue::na;
  const double type = call.number(2, 1);
  const Wanted wanted(call.value(0), type == 0);
  const Position found = type == 0 ? find_equal(call.context(), vector, wanted)
                                   : find_sorted(vector, wanted, type < 0);
  return found ? Operand(static_cast<double>(*found + 1)) : Operand(ErrorValue::na);
}

Operand fn_lookup(Call& call) {
  if (const auto error = block_error(call[1])) return *error;
  Context& context = call.context();
  const Shape shape = shape_of(call[1]);
  const bool along_row = shape.columns > shape.rows;
  const Operand keys = along_row ? part_of(context, call[1], 0, 0, 1, shape.columns)
                                 : part_of(context, call[1], 0, 0, shape.rows, 1);
  const Vector vector(context, keys);
  if (context.gave_up()) return ErrorValue::na;
  const Position found = find_sorted(vector, Wanted(call.value(0), false));
  if (!found) return ErrorValue::na;
  const int at = static_cast<int>(*found);
  if (!call.given(2)) {
    const Operand result = along_row ? part_of(context, call[1], shape.rows - 1, at, 1, 1)
                                     : part_of(context, call[1], at, shape.columns - 1, 1, 1);
    return as_value(call, result);
  }
  if (const auto error = block_error(call[2])) return *error;
  const Shape results = shape_of(call[2]);
  if (results.rows > 1 && results.columns > 1) return ErrorValue::na;
  if (at >= std::max(results.rows, results.columns)) return ErrorValue::na;
  return as_value(call, results.columns > results.rows ? part_of(context, call[2], 0, at, 1, 1)
                                                       : part_of(context, call[2], at, 0, 1, 1));
}

/// The position that halving finds in sorted values: an equal one, else by the sign of `match` the
/// next one below or above.
Position find_halving(const Vector& vector, const Wanted& wanted, double match, bool descending) {
  const Position found = find_sorted(vector, wanted, descending);
  if (found && wanted.equals(vector.at(*found))) return found;
  if (match == 0) return std::nullopt;
  // Ascending order finds the one below, descending order the one above.
  const bool wants_above = match > 0;
  if (wants_above == descending) return found;
  const std::int64_t next = found ? *found + 1 : 0;
  return next < vector.stored() ? Position(next) : std::nullopt;
}

/// The position that XMATCH and XLOOKUP find, or an error.
Outcome<std::int64_t> extended_match(Call& call, int mode_at) {
  if (const auto error = block_error(call[1])) return *error;
  const Shape shape = shape_of(call[1]);
  if (shape.rows > 1 && shape.columns > 1) return ErrorValue::value;
  const double match = std::trunc(call.number(mode_at, 0));
  const double search = call.given(mode_at + 1) ? std::trunc(call.number(mode_at + 1)) : 1;
  const bool halving = std::fabs(search) == 2;
  if (std::fabs(match) > 2 || match == -2 || std::fabs(search) > 2 || search == 0 ||
      (halving && match == 2))
    return ErrorValue::value;
  const Vector vector(call.context(), call[1]);
  if (call.context().gave_up()) return ErrorValue::na;
  const Wanted wanted(call.value(0), match == 2, halving);
  const Position found = halving ? find_halving(vector, wanted, match, search < 0)
                         : match == 0 || match == 2
                             ? find_equal(call.context(), vector, wanted, search < 0)
                             : find_nearest(call.context(), vector, wanted, match > 0, search < 0);
  if (!found) return ErrorValue::na;
  return *found;
}

Operand fn_xmatch(Call& call) {
  const auto found = extended_match(call, 2);
  return found ? Operand(static_cast<double>(*found + 1)) : Operand(found.error());
}

Operand fn_xlookup(Call& call) {
  if (const auto error = block_error(call[2])) return *error;
  const Shape keys = shape_of(call[1]);
  const Shape results = shape_of(call[2]);
  const bool down = keys.columns == 1 && (keys.rows > 1 || results.rows == 1);
  if (down ? results.rows != keys.rows : results.columns != keys.columns) return ErrorValue::value;
  const auto found = extended_match(call, 4);
  if (!found) {
    const bool replaced = found.error() == ErrorValue::na && call.given(3);
    return replaced && !call.context().gave_up() ? call[3] : Operand(found.error());
  }
  const int at = static_cast<int>(*found);
  return down ? part_of(call.context(), call[2], at, 0, 1, results.columns)
              : part_of(call.context(), call[2], 0, at, results.rows, 1);
}

/// An index of INDEX, from 0; -1 stands for all.
struct Index {
  int row = -1;
  int column = -1;
};

Outcome<Index> index_of(Call& call, const Shape& shape) {
  double row = call.number(1);
  double column = call.number(2, 0);
  if (call.number(1) < 0) return ErrorValue::value;
  // A block of cells needs both.
  if (call.count() < 3 && call[0].is_reference() && shape.rows > 1 && shape.columns > 1)
    return ErrorValue::ref;
  // In a single row the one index counts columns.
  if (call.count() < 3 && shape.rows == 1) std::swap(row, column);
  if (call.count() < 3 && shape.rows == 1) row = 1;
  if (row < 0 || column < 0) return ErrorValue::value;
  if (row >= shape.rows + 1.0 || column >= shape.columns + 1.0) return ErrorValue::ref;
  return Index{static_cast<int>(row) - 1, static_cast<int>(column) - 1};
}

Operand fn_index(Call& call) {
  if (call[0].error()) return *call[0].error();
  if (call[0].is_missing()) return ErrorValue::value;
  Operand block = call[0];
  const double area = std::trunc(call.number(3, 1));
  if (block.is_reference()) {
    if (area < 1 || area > static_cast<double>(block.areas().size())) return ErrorValue::ref;
    block = Area(block.areas()[static_cast<std::size_t>(area) - 1]);
  } else if (area != 1) {
    return ErrorValue::ref;
  }
  const Shape shape = shape_of(block);
  const auto index = index_of(call, shape);
  if (!index) return index.error();
  if (index->row < 0 && index->column < 0) return block;
  const int rows = index->row < 0 ? shape.rows : 1;
  const int columns = index->column < 0 && shape.columns > 1 ? shape.columns : 1;
  return part_of(call.context(), block, std::max(index->row, 0), std::max(index->column, 0), rows,
                 columns);
}

Operand fn_choose(LazyCall& call) {
  const Operand index = call.evaluate(0);
  if (call.is_many(index)) {
    std::vector<Operand> choices;
    std::vector<Grid> grids;
    for (int i = 1; i < call.count(); ++i) choices.push_back(call.evaluate(i));
    const Grid indexes(call.context(), index);
    int rows = indexes.rows();
    int columns = indexes.columns();
    for (const Operand& choice : choices) {
      grids.emplace_back(call.context(), choice);
      rows = std::max(rows, grids.back().rows());
      columns = std::max(columns, grids.back().columns());
    }
    if (std::int64_t{rows} * columns > max_array_elements) return ErrorValue::num;
    auto result = make_ref<VariantArray>(rows, columns);
    for (int row = 0; row < rows; ++row)
      for (int column = 0; column < columns; ++column) {
        const auto number = to_number(indexes.broadcast(row, column), call.context().dates());
        const double at = number ? std::trunc(*number) : 0;
        const bool inside = at >= 1 && at <= static_cast<double>(grids.size());
        result->at(row + 1, column + 1) =
            !number   ? Variant(number.error())
            : !inside ? Variant(ErrorValue::value)
                      : grids[static_cast<std::size_t>(at) - 1].broadcast(row, column).to_variant();
      }
    return Ref<const VariantArray>(result);
  }
  const auto number = to_number(call.context().single(index), call.context().dates());
  if (!number) return number.error();
  const double at = std::trunc(*number);
  if (at < 1 || at >= call.count()) return ErrorValue::value;
  return call.missing(static_cast<int>(at)) ? Operand(0.0) : call.evaluate(static_cast<int>(at));
}

// clang-format off
constexpr FunctionSpec lookup_table[] = {
    {"CHOOSE", 2, any_count, gives_reference, {any}, fn_choose, "index, value1, ...",
     "the value with that number", "=CHOOSE(2,\"a\",\"b\")", "b"},
    {"HLOOKUP", 3, 4, plain, {value, values, number, logical}, fn_hlookup,
     "value, table, row, [approximate]",
     "looks a value up in the first row and gives what stands below",
     "=HLOOKUP(2,{1,2,3;\"a\",\"b\",\"c\"},2)", "b"},
    {"INDEX", 2, 4, gives_reference, {Parameter::array, number, number, number}, fn_index,
     "array, row, [column], [area]", "what stands in a row and column of a block",
     "=INDEX({1,2;3,4},2,1)", "3"},
    {"LOOKUP", 2, 3, plain, {value, Parameter::array, Parameter::array}, fn_lookup,
     "value, vector, [result_vector]", "looks a value up in sorted values",
     "=LOOKUP(2.5,{1,2,3},{\"a\",\"b\",\"c\"})", "b"},
    {"MATCH", 2, 3, plain, {value, values, number}, fn_match, "value, vector, [type]",
     "the position of a value in a row or column", "=MATCH(\"b*\",{\"a\",\"Bc\"},0)", "2"},
    {"VLOOKUP", 3, 4, plain, {value, values, number, logical}, fn_vlookup,
     "value, table, column, [approximate]",
     "looks a value up in the first column and gives what stands beside it",
     "=VLOOKUP(2,{1,\"a\";2,\"b\"},2,FALSE)", "b"},
    {"XLOOKUP", 3, 6, gives_reference, {value, values, values, values, number, number}, fn_xlookup,
     "value, lookup, results, [if_not_found], [match_mode], [search_mode]",
     "looks a value up in one row or column and gives what stands in another",
     "=XLOOKUP(5,{1,2,3},{10,20,30},\"none\",-1)", "30"},
    {"XMATCH", 2, 4, plain, {value, values, number, number}, fn_xmatch,
     "value, vector, [match_mode], [search_mode]", "the position of a value in a row or column",
     "=XMATCH(2.5,{1,2,3},1)", "3"},
};
// clang-format on
static_assert(well_formed(lookup_table));

}  // namespace

std::span<const FunctionSpec> lookup_functions() { return lookup_table; }

}  // namespace qto::embedded::functions
