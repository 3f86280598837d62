#pragma once

#include <cstdint>
#include <optional>

#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/functions/wildcard.hpp"

/// Looking a value up in one row or column.
namespace qto::embedded::functions {

/// A row or column of values; positions count from 0. Cells where nothing is stored cost nothing.
class Vector {
 public:
  /// The operand must be one row or one column and outlive the vector.
  Vector(Context& context, const Operand& operand);
  std::int64_t size() const noexcept { return grid_.size(); }
  bool is_column() const noexcept { return grid_.columns() == 1; }
  ValueView at(std::int64_t position) const noexcept {
    return is_column() ? grid_.at(static_cast<int>(position), 0)
                       : grid_.at(0, static_cast<int>(position));
  }
  /// Calls visit(position, value) for what is stored, from the start, until it gives false.
  template <class Visit>
  void for_each(Visit&& visit) const {
    if (is_column())
      grid_.for_each([&](int row, int, const ValueView& value) { return visit(row, value); });
    else
      grid_.for_each([&](int, int column, const ValueView& value) { return visit(column, value); });
  }
  /// The block of cells that is seen when it is one of a single column, or null.
  const Area* column() const noexcept { return is_column() ? grid_.area() : nullptr; }
  /// The number of positions from the start beyond which all is blank.
  std::int64_t stored() const noexcept;
  /// The first position from `position` on where something may be stored; size() if none.
  std::int64_t next_stored(std::int64_t position) const noexcept;

 private:
  Grid grid_;
};

/// What is looked for: equal values of the same type, texts without regard to letter case.
class Wanted {
 public:
  /// `wildcards`: a text is a pattern with * ? ~. `across_types`: values of all types are compared,
  /// numbers before texts before Booleans before errors.
  Wanted(const ValueView& value, bool wildcards, bool across_types = false);
  Wanted(const Wanted&) = delete;
  Wanted& operator=(const Wanted&) = delete;
  bool equals(const ValueView& value) const;
  /// True when values of that type can be compared with the one looked for.
  bool comparable(const ValueView& value) const noexcept;
  /// How a comparable value stands to the one looked for: below 0 before it, above 0 after it.
  int order(const ValueView& value) const;
  const ValueView& value() const noexcept { return value_; }
  /// True when only the very value fits, not a pattern.
  bool is_exact() const noexcept { return !pattern_; }

 private:
  ValueView value_;
  bool ascii_ = false;
  bool across_types_ = false;
  std::optional<WildcardPattern> pattern_;
  std::string plain_;
};

/// The first (or last) position that holds an equal value.
std::optional<std::int64_t> find_equal(Context& context, const Vector& vector, const Wanted& wanted,
                                       bool last = false);
/// In ascending order: the last position of the largest value not above the wanted one. In
/// descending order: of the smallest value not below it. Anything may come out of unsorted values.
std::optional<std::int64_t> find_sorted(const Vector& vector, const Wanted& wanted,
                                        bool descending = false);
/// Among unsorted values: an equal one, else the largest below (or the smallest above) it.
std::optional<std::int64_t> find_nearest(Context& context, const Vector& vector,
                                         const Wanted& wanted, bool above, bool last);

}  // namespace qto::embedded::functions
