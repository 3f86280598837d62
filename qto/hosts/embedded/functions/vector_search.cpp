#include "qto/hosts/embedded/functions/vector_search.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/compare.hpp"

namespace qto::embedded::functions {

namespace {

/// The end of the run of equal values that a position lies in.
std::int64_t last_of_run(const Vector& vector, const Wanted& wanted, std::int64_t position) {
  const std::int64_t end = vector.stored();
  while (position + 1 < end) {
    const ValueView next = vector.at(position + 1);
    if (!wanted.comparable(next) || wanted.order(next) != 0) break;
    ++position;
  }
  return position;
}

}  // namespace

Vector::Vector(Context& context, const Operand& operand) : grid_(context, operand) {}

std::int64_t Vector::stored() const noexcept {
  return is_column() ? grid_.stored_rows() : grid_.stored_columns();
}

std::int64_t Vector::next_stored(std::int64_t position) const noexcept {
  const Area* area = grid_.area();
  if (!area || !is_column()) return position;
  const CellPos first = area->rect.first;
  const CellPos next = area->sheet->cells.next_in_column(
      {first.row + static_cast<std::int32_t>(position), first.column}, area->rect.last.row);
  return next.row == 0 ? size() : next.row - first.row;
}

Wanted::Wanted(const ValueView& value, bool wildcards, bool across_types)
    : value_(value.is_empty() ? ValueView(0.0) : value), across_types_(across_types) {
  if (!value_.is_text()) return;
  ascii_ = text::is_ascii(value_.text());
  if (!wildcards) return;
  WildcardPattern pattern(value_.text());
  if (pattern.has_wildcards()) {
    pattern_ = std::move(pattern);
  } else if (value_.text().find('~') != std::string_view::npos) {
    plain_ = pattern.plain();
    value_ = std::string_view(plain_);
  }
}

bool Wanted::comparable(const ValueView& value) const noexcept {
  return across_types_ ? !value.is_empty() : value.type() == value_.type();
}

int Wanted::order(const ValueView& value) const {
  return value.is_error() ? 1 : compare_values(value, value_);
}

bool Wanted::equals(const ValueView& value) const {
  if (value.type() != value_.type()) return false;
  if (value.is_number()) return value.number() == value_.number();
  if (!value.is_text()) return !value.is_error() && equal_values(value, value_);
  if (pattern_) return pattern_->matches(value.text());
  // Most texts differ in length already; folding changes it beyond ASCII only.
  if (ascii_ && value.text().size() != value_.text().size()) return false;
  return equal_values(value, value_);
}

std::optional<std::int64_t> find_equal(Context& context, const Vector& vector, const Wanted& wanted,
                                       bool last) {
  if (vector.column() && !last && wanted.is_exact() && !wanted.value().is_error()) {
    if (const LookupIndex* index = context.lookups().over(*vector.column())) {
      const LookupIndex::Entry entry = index->first(wanted.value());
      if (entry == LookupIndex::none) return std::nullopt;
      return index->row(entry);
    }
  }
  std::optional<std::int64_t> found;
  vector.for_each([&](std::int64_t position, const ValueView& value) {
    if (wanted.equals(value)) found = position;
    return last || !found;
  });
  return found;
}

std::optional<std::int64_t> find_sorted(const Vector& vector, const Wanted& wanted,
                                        bool descending) {
  std::optional<std::int64_t> found;
  std::int64_t low = 0;
  std::int64_t high = vector.stored() - 1;
  while (low <= high) {
    const std::int64_t middle = low + (high - low) / 2;
    std::int64_t probe = vector.next_stored(middle);
    while (probe <= high && !wanted.comparable(vector.at(probe)))
      probe = vector.next_stored(probe + 1);
    if (probe > high) {
      high = middle - 1;
      continue;
    }
    const int order = wanted.order(vector.at(probe));
    if (order == 0) return last_of_run(vector, wanted, probe);
    if (descending ? order >= 0 : order <= 0) {
      found = probe;
      low = probe + 1;
    } else {
      high = middle - 1;
    }
  }
  return found;
}

std::optional<std::int64_t> find_nearest(Context& context, const Vector& vector,
                                         const Wanted& wanted, bool above, bool last) {
  if (const auto equal = find_equal(context, vector, wanted, last)) return equal;
  std::optional<std::int64_t> best;
  vector.for_each([&](std::int64_t position, const ValueView& value) {
    if (!wanted.comparable(value)) return true;
    const int order = compare_values(value, wanted.value());
    if (above ? order < 0 : order > 0) return true;
    const int against_best = best ? compare_values(value, vector.at(*best)) : 0;
    const bool better = above ? against_best < 0 : against_best > 0;
    if (!best || better || (last && against_best == 0)) best = position;
    return true;
  });
  return best;
}

}  // namespace qto::embedded::functions
