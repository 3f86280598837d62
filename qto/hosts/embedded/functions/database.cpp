#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/functions/aggregate.hpp"
#include "qto/hosts/embedded/functions/criterion.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// The column of a list whose heading is the text; -1 if none.
int column_named(const Grid& list, std::string_view name) {
  for (int column = 0; column < list.columns(); ++column) {
    const auto heading = to_text(list.at(0, column));
    if (heading && text::equal_fold(text::trim(*heading), text::trim(name))) return column;
  }
  return -1;
}

/// The conditions of a criteria block: rows are alternatives, what stands in one row holds
/// together.
class Filter {
 public:
  Filter(const Grid& list, const Grid& criteria, const DateSettings& dates) {
    for (int row = 1; row < criteria.stored_rows(); ++row) {
      std::vector<Condition> alternative;
      bool impossible = false;
      for (int column = 0; column < criteria.columns(); ++column) {
        const ValueView value = criteria.at(row, column);
        if (value.is_empty()) continue;
        const auto heading = to_text(criteria.at(0, column));
        const int field = heading ? column_named(list, *heading) : -1;
        if (field < 0) {
          // A condition that is calculated for each row would need its formula.
          calculated_ = calculated_ || is_formula(criteria, row, column);
          impossible = true;
        } else {
          alternative.push_back({field, Criterion(value, dates, Criterion::Texts::beginnings)});
        }
      }
      if (!impossible) alternatives_.push_back(std::move(alternative));
    }
  }
  /// True when a condition is a formula to be calculated for each row, which is not supported.
  bool is_calculated() const noexcept { return calculated_; }

  bool passes(const Grid& list, int row) const {
    for (const auto& alternative : alternatives_)
      if (std::ranges::all_of(alternative, [&](const Condition& condition) {
            return condition.criterion.matches(list.at(row, condition.field));
          }))
        return true;
    return false;
  }

 private:
  struct Condition {
    int field;
    Criterion criterion;
  };
  static bool is_formula(const Grid& criteria, int row, int column) {
    const Area* area = criteria.area();
    if (!area) return false;
    const CellPos first = area->rect.first;
    return area->sheet->formula_at({first.row + row, first.column + column}) != 0;
  }

  std::vector<std::vector<Condition>> alternatives_;
  bool calculated_ = false;
};

/// The column that the field argument names: a heading or a number from 1; -1 for all fields.
Outcome<int> field_of(Call& call, const Grid& list) {
  if (!call.given(1)) return -1;
  const ValueView field = call.value(1);
  if (field.is_empty()) return -1;
  if (field.is_text()) {
    const int column = column_named(list, field.text());
    if (column < 0) return ErrorValue::value;
    return column;
  }
  const auto number = to_number(field, call.context().dates());
  if (!number) return number.error();
  const double column = std::trunc(*number);
  if (column < 1 || column > list.columns()) return ErrorValue::value;
  return static_cast<int>(column) - 1;
}

/// Calls visit(row, field) for the rows of the list that pass the criteria.
template <class Visit>
std::optional<ErrorValue> visit_rows(Call& call, Visit&& visit) {
  for (const int i : {0, 2}) {
    if (call[i].error()) return *call[i].error();
    if (!call[i].area() && !call[i].is_array()) return ErrorValue::value;
  }
  const Grid list(call.context(), call[0]);
  const Grid criteria(call.context(), call[2]);
  if (call.context().gave_up()) return ErrorValue::na;
  const auto field = field_of(call, list);
  if (!field) return field.error();
  if (criteria.rows() < 2 || list.rows() < 2) return ErrorValue::value;
  const Filter filter(list, criteria, call.context().dates());
  if (filter.is_calculated()) return ErrorValue::value;
  for (int row = 1; row < list.stored_rows(); ++row)
    if (filter.passes(list, row)) visit(list, row, *field);
  return std::nullopt;
}

template <Aggregate kind>
Operand fn_aggregate(Call& call) {
  constexpr bool counts = kind == Aggregate::count || kind == Aggregate::counta;
  Sample sample;
  std::int64_t rows = 0;
  bool all_fields = false;
  std::optional<ErrorValue> inner;
  const auto error = visit_rows(call, [&](const Grid& list, int row, int field) {
    ++rows;
    if (field < 0) {
      all_fields = true;
      return;
    }
    const ValueView value = list.at(row, field);
    if (value.is_error() && !counts && !inner) inner = value.error();
    if (value.is_number()) sample.numbers.push_back(value.number());
    if (!value.is_empty()) ++sample.values;
  });
  if (error) return *error;
  if (inner) return *inner;
  // Without a field, whole rows are counted.
  if (all_fields) return counts ? Operand(static_cast<double>(rows)) : Operand(ErrorValue::value);
  return aggregate(kind, std::move(sample));
}

Operand fn_dget(Call& call) {
  std::int64_t found = 0;
  Variant result;
  const auto error = visit_rows(call, [&](const Grid& list, int row, int field) {
    if (field < 0) return;
    const ValueView value = list.at(row, field);
    if (value.is_empty()) return;
    if (++found == 1) result = value.to_variant();
  });
  if (error) return *error;
  if (found == 0) return ErrorValue::value;
  return found == 1 ? Operand(result) : Operand(ErrorValue::num);
}

// clang-format off
constexpr FunctionSpec database_table[] = {
    {"DAVERAGE", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::average>,
     "list, field, criteria", "the mean of a field over the rows that meet the criteria",
     "=DAVERAGE({\"n\";1;5;9},1,{\"n\";\">1\"})", "7"},
    {"DCOUNT", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::count>,
     "list, field, criteria", "how many numbers a field holds in the rows that meet the criteria",
     "=DCOUNT({\"n\";1;5;9},1,{\"n\";\">1\"})", "2"},
    {"DCOUNTA", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::counta>,
     "list, field, criteria", "how many values a field holds in the rows that meet the criteria",
     "=DCOUNTA({\"n\";\"ax\";\"b\"},\"n\",{\"n\";\"a\"})", "1"},
    {"DGET", 3, 3, plain, {values, value, values}, fn_dget, "list, field, criteria",
     "the value of the one row that meets the criteria",
     "=DGET({\"n\",\"v\";\"a\",1;\"b\",2},\"v\",{\"n\";\"b\"})", "2"},
    {"DMAX", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::max>,
     "list, field, criteria", "the largest number in the rows that meet the criteria",
     "=DMAX({\"n\";1;5;9},1,{\"n\";\"<9\"})", "5"},
    {"DMIN", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::min>,
     "list, field, criteria", "the smallest number in the rows that meet the criteria",
     "=DMIN({\"n\";1;5;9},1,{\"n\";\">1\"})", "5"},
    {"DPRODUCT", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::product>,
     "list, field, criteria", "the product of the numbers in the rows that meet the criteria",
     "=DPRODUCT({\"n\";1;5;9},1,{\"n\";\">1\"})", "45"},
    {"DSTDEV", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::stdev_s>,
     "list, field, criteria",
     "the standard deviation of a sample from the rows that meet the criteria",
     "=DSTDEV({\"n\";1;5;9},1,{\"n\";\">1\"})^2", "8"},
    {"DSTDEVP", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::stdev_p>,
     "list, field, criteria", "the standard deviation of the rows that meet the criteria",
     "=DSTDEVP({\"n\";1;5;9},1,{\"n\";\">1\"})", "2"},
    {"DSUM", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::sum>,
     "list, field, criteria", "the sum of a field over the rows that meet the criteria",
     "=DSUM({\"n\";1;5;9},1,{\"n\";\">1\"})", "14"},
    {"DVAR", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::var_s>,
     "list, field, criteria", "the variance of a sample from the rows that meet the criteria",
     "=DVAR({\"n\";1;5;9},1,{\"n\";\">1\"})", "8"},
    {"DVARP", 3, 3, plain, {values, value, values}, fn_aggregate<Aggregate::var_p>,
     "list, field, criteria", "the variance of the rows that meet the criteria",
     "=DVARP({\"n\";1;5;9},1,{\"n\";\">1\"})", "4"},
};
// clang-format on
static_assert(well_formed(database_table));

}  // namespace

std::span<const FunctionSpec> database_functions() { return database_table; }

}  // namespace qto::embedded::functions
