#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/functions/criterion.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// One range with its condition.
struct Condition {
  Grid range;
  Criterion criterion;
};

/// The index that answers a condition, or null when its range is to be looked through.
const LookupIndex* index_of(Context& context, const Condition& condition) {
  const Area* block = condition.range.area();
  if (!block || condition.range.columns() != 1) return nullptr;
  const auto wanted = condition.criterion.only_value();
  if (!wanted) return nullptr;
  const LookupIndex* index = context.lookups().over(*block);
  return index && wanted->is_number() && index->has_texts_with_digits() ? nullptr : index;
}

/// Calls visit(row, column) for the places that meet a condition which blank cells do not meet.
template <class Visit>
void for_each_match(const Condition& condition, const LookupIndex* index, Visit&& visit) {
  if (index) {
    auto entry = index->first(*condition.criterion.only_value());
    for (; entry != LookupIndex::none; entry = index->next(entry)) visit(index->row(entry), 0);
    return;
  }
  condition.range.for_each([&](int row, int column, const ValueView& value) {
    if (condition.criterion.matches(value)) visit(row, column);
    return true;
  });
}

/// The conditions of a call, which all look at blocks of the same size.
class Conditions {
 public:
  /// Arguments from `first` on are pairs of a range and a criterion.
  Conditions(Call& call, int first) : context_(call.context()) {
    if ((call.count() - first) % 2 != 0) {
      error_ = ErrorValue::value;
      return;
    }
    for (int i = first; i + 1 < call.count(); i += 2) add(call, i);
  }
  const std::optional<ErrorValue>& error() const noexcept { return error_; }
  int rows() const noexcept { return conditions_.front().range.rows(); }
  int columns() const noexcept { return conditions_.front().range.columns(); }

  static constexpr std::size_t none = -1;
  /// All conditions but one that is known to be met.
  bool met(int row, int column, std::size_t known = none) const {
    for (std::size_t i = 0; i < conditions_.size(); ++i) {
      if (i == known) continue;
      if (!conditions_[i].criterion.matches(conditions_[i].range.at(row, column))) return false;
    }
    return true;
  }

  /// Calls visit(row, column) for the places that meet all conditions, of which blank cells do not
  /// meet one at least; false, and nothing visited, without an index.
  template <class Visit>
  bool for_each_indexed(Visit&& visit) const {
    for (std::size_t i = 0; i < conditions_.size(); ++i) {
      const LookupIndex* index = index_of(context_, conditions_[i]);
      if (!index) continue;
      for_each_match(conditions_[i], index, [&](int row, int column) {
        if (met(row, column, i)) visit(row, column);
      });
      return true;
    }
    return false;
  }

  /// How many places meet all conditions; what is beyond the stored cells counts by arithmetic.
  std::int64_t count() const {
    const bool blanks = all_match_empty();
    const int rows = blanks ? stored_rows() : this->rows();
    std::int64_t count = 0;
    if (!blanks) {
      if (for_each_indexed([&](int, int) { ++count; })) return count;
      const std::size_t first = selective();
      for_each_match(conditions_[first], nullptr,
                     [&](int row, int column) { count += met(row, column, first); });
      return count;
    }
    for (int row = 0; row < rows; ++row)
      for (int column = 0; column < columns(); ++column) count += met(row, column);
    return count + std::int64_t{this->rows() - rows} * columns();
  }

 private:
  void add(Call& call, int at) {
    if (error_) return;
    if (!call[at].area()) {
      error_ = ErrorValue::value;
      return;
    }
    conditions_.push_back(
        {Grid(call.context(), call[at]), Criterion(call.value(at + 1), call.context().dates())});
    const Grid& added = conditions_.back().range;
    if (call.context().gave_up()) error_ = ErrorValue::na;
    if (added.rows() != rows() || added.columns() != columns()) error_ = ErrorValue::value;
  }
  bool all_match_empty() const {
    return std::ranges::all_of(conditions_,
                               [](const Condition& c) { return c.criterion.matches_empty(); });
  }
  /// A condition that blank cells do not meet: only its stored cells need a look.
  std::size_t selective() const {
    std::size_t i = 0;
    while (conditions_[i].criterion.matches_empty()) ++i;
    return i;
  }
  int stored_rows() const {
    int rows = 0;
    for (const Condition& condition : conditions_)
      rows = std::max(rows, condition.range.stored_rows());
    return rows;
  }

  Context& context_;
  std::vector<Condition> conditions_;
  std::optional<ErrorValue> error_;
};

/// What the aggregates of this family gather.
struct Gathered {
  double sum = 0;
  std::int64_t count = 0;
  double least = 0;
  double largest = 0;
  std::optional<ErrorValue> error;

  void take(const ValueView& value) {
    if (value.is_error()) {
      if (!error) error = value.error();
      return;
    }
    if (!value.is_number()) return;
    const double number = value.number();
    least = count == 0 ? number : std::min(least, number);
    largest = count == 0 ? number : std::max(largest, number);
    sum += number;
    ++count;
  }
};

Gathered failed(ErrorValue error) {
  Gathered result;
  result.error = error;
  return result;
}

/// range, criterion, [values]: the values lie where the range lies, from their first cell on.
Gathered gather_one(Call& call) {
  if (!call[0].area()) return failed(ErrorValue::value);
  const Condition condition{Grid(call.context(), call[0]),
                            Criterion(call.value(1), call.context().dates())};
  const Grid& range = condition.range;
  Area values = *call[0].area();
  if (call.given(2)) {
    if (!call[2].area()) return failed(ErrorValue::value);
    values = *call[2].area();
    const CellPos first = values.rect.first;
    values.rect.last = {std::min(first.row + range.rows() - 1, max_rows),
                        std::min(first.column + range.columns() - 1, max_columns)};
  }
  const Operand values_operand(values);
  const Grid numbers(call.context(), values_operand);
  if (call.context().gave_up()) return failed(ErrorValue::na);
  Gathered result;
  const bool same_cells = values == *call[0].area();
  if (!same_cells && !condition.criterion.matches_empty()) {
    for_each_match(condition, index_of(call.context(), condition), [&](int row, int column) {
      if (row < numbers.rows() && column < numbers.columns()) result.take(numbers.at(row, column));
    });
    return result;
  }
  // Only places where something is stored among the values can add anything.
  numbers.for_each([&](int row, int column, const ValueView& value) {
    if (!value.is_empty() &&
        condition.criterion.matches(same_cells ? value : range.at(row, column)))
      result.take(value);
    return true;
  });
  return result;
}

/// values, range1, criterion1, ...
Gathered gather_many(Call& call) {
  if (!call[0].area()) return failed(ErrorValue::value);
  const Grid numbers(call.context(), call[0]);
  const Conditions conditions(call, 1);
  if (conditions.error()) return failed(*conditions.error());
  if (conditions.rows() != numbers.rows() || conditions.columns() != numbers.columns())
    return failed(ErrorValue::value);
  Gathered result;
  if (conditions.for_each_indexed(
          [&](int row, int column) { result.take(numbers.at(row, column)); }))
    return result;
  numbers.for_each([&](int row, int column, const ValueView& value) {
    if (!value.is_empty() && conditions.met(row, column)) result.take(value);
    return true;
  });
  return result;
}

Operand sum_of(const Gathered& gathered) {
  return gathered.error ? Operand(*gathered.error) : Operand(gathered.sum);
}

Operand average_of(const Gathered& gathered) {
  if (gathered.error) return *gathered.error;
  if (gathered.count == 0) return ErrorValue::div0;
  return gathered.sum / static_cast<double>(gathered.count);
}

Operand fn_sumif(Call& call) { return sum_of(gather_one(call)); }
Operand fn_sumifs(Call& call) { return sum_of(gather_many(call)); }
Operand fn_averageif(Call& call) { return average_of(gather_one(call)); }
Operand fn_averageifs(Call& call) { return average_of(gather_many(call)); }

Operand fn_maxifs(Call& call) {
  const Gathered gathered = gather_many(call);
  return gathered.error ? Operand(*gathered.error) : Operand(gathered.largest);
}

Operand fn_minifs(Call& call) {
  const Gathered gathered = gather_many(call);
  return gathered.error ? Operand(*gathered.error) : Operand(gathered.least);
}

Operand fn_countif(Call& call) {
  const Conditions conditions(call, 0);
  if (conditions.error()) return *conditions.error();
  return static_cast<double>(conditions.count());
}

// clang-format off
constexpr FunctionSpec conditional_table[] = {
    {"AVERAGEIF", 2, 3, plain, {reference, any, reference}, fn_averageif,
     "range, criterion, [average_range]", "the mean of the numbers that meet a condition",
     "=AVERAGEIF(A1:A3,\">0\")", "#DIV/0!"},
    {"AVERAGEIFS", 3, any_count, repeats_pair, {reference, reference, any}, fn_averageifs,
     "average_range, range1, criterion1, ...", "the mean of the numbers that meet all conditions",
     "=AVERAGEIFS(A1:A3,B1:B3,1)", "#DIV/0!"},
    {"COUNTIF", 2, 2, plain, {reference, any}, fn_countif, "range, criterion",
     "how many cells meet a condition", "=COUNTIF(A1:B3,\"\")", "6"},
    {"COUNTIFS", 2, any_count, repeats_pair, {reference, any}, fn_countif,
     "range1, criterion1, ...", "how many places meet all conditions",
     "=COUNTIFS(A1:A3,\"\",B1:B3,\">0\")", "0"},
    {"MAXIFS", 3, any_count, repeats_pair, {reference, reference, any}, fn_maxifs,
     "max_range, range1, criterion1, ...", "the largest number that meets all conditions",
     "=MAXIFS(A1:A3,B1:B3,1)", "0"},
    {"MINIFS", 3, any_count, repeats_pair, {reference, reference, any}, fn_minifs,
     "min_range, range1, criterion1, ...", "the smallest number that meets all conditions",
     "=MINIFS(A1:A3,B1:B3,1)", "0"},
    {"SUMIF", 2, 3, plain, {reference, any, reference}, fn_sumif, "range, criterion, [sum_range]",
     "the sum of the numbers that meet a condition", "=SUMIF(A1:A3,\">0\")", "0"},
    {"SUMIFS", 3, any_count, repeats_pair, {reference, reference, any}, fn_sumifs,
     "sum_range, range1, criterion1, ...", "the sum of the numbers that meet all conditions",
     "=SUMIFS(A1:A3,B1:B3,1)", "0"},
};
// clang-format on
static_assert(well_formed(conditional_table));

}  // namespace

std::span<const FunctionSpec> conditional_functions() { return conditional_table; }

}  // namespace qto::embedded::functions
