#pragma once

#include "qto/hosts/embedded/functions/day_count.hpp"

/// The coupon dates of securities and the days between them.
namespace qto::embedded::functions {

/// A security between settlement and maturity with 1, 2 or 4 coupons a year and a basis of 0 to 4.
struct Coupons {
  Day settlement;
  Day maturity;
  int frequency = 1;
  int basis = 0;
  bool date1904 = false;

  /// The last coupon day on or before settlement and the first one after it.
  Day previous() const;
  Day next() const;
  /// Coupons after settlement, the one at maturity included.
  int count() const;
  /// Days of the coupon period that holds settlement.
  double period_days() const;
  /// Days from the start of that period to settlement, and from settlement to its end.
  double days_passed() const;
  double days_left() const;

 private:
  /// The coupon day that many periods before maturity.
  Day before_maturity(int periods) const;
};

/// Days between two days as a basis counts them.
double days_by_basis(const Day& start, const Day& end, int basis) noexcept;
/// Days of a year by a basis; the year of `day` counts for actual/actual.
double year_by_basis(const Day& day, int basis) noexcept;

}  // namespace qto::embedded::functions
