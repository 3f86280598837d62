#pragma once

#include <optional>

#include "qto/hosts/embedded/evaluate/call.hpp"
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

/// Coupon periods laid out from one day in both directions, whether a coupon is paid in them or
/// not.
struct CouponGrid {
  Day anchor;
  int frequency = 1;
  int basis = 0;
  bool date1904 = false;

  /// The start of the period that many periods after the anchor.
  Day start(int period) const;
  /// The period, counted from the anchor, that holds a day.
  int period_of(const Day& day) const;
  /// The days of a period.
  double length(int period) const;
  /// The time between two days in coupon periods: whole ones, and parts by their days.
  double between(const Day& from, const Day& to) const;
};

/// Arguments of functions of securities; nothing where they are none: a day, a basis of 0 to 4 (0
/// when left out), 1, 2 or 4 coupons a year.
std::optional<Day> day_argument(const Call& call, int position);
std::optional<int> basis_argument(const Call& call, int position);
std::optional<int> frequency_argument(const Call& call, int position);

/// Days between two days as a basis counts them.
double days_by_basis(const Day& start, const Day& end, int basis) noexcept;

}  // namespace qto::embedded::functions
