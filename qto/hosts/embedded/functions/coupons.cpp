#include "qto/hosts/embedded/functions/coupons.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qto::embedded::functions {

namespace {

/// The day some coupon periods later; the last day of a month stays one. Days outside the calendar
/// lie before or after all others.
Day moved(const Day& day, int periods, int frequency, bool date1904) {
  const auto serial = add_months(day, periods * (12 / frequency), day.last_of_month(), date1904);
  if (!serial) return Day{periods > 0 ? std::numeric_limits<int>::max() / 2 : 0, {}};
  return to_day(*serial, date1904).value_or(Day{});
}

}  // namespace

Day Coupons::before_maturity(int periods) const {
  return moved(maturity, -periods, frequency, date1904);
}

int Coupons::count() const {
  const int months = (maturity.date.year - settlement.date.year) * 12 + maturity.date.month -
                     settlement.date.month;
  int periods = std::max(0, months / (12 / frequency) - 1);
  while (before_maturity(periods).serial > settlement.serial) ++periods;
  return periods;
}

Day Coupons::previous() const { return before_maturity(count()); }
Day Coupons::next() const { return before_maturity(count() - 1); }

double Coupons::period_days() const {
  if (basis == 1) return next().serial - previous().serial;
  return (basis == 3 ? 365.0 : 360.0) / frequency;
}

double Coupons::days_passed() const { return days_by_basis(previous(), settlement, basis); }

double Coupons::days_left() const {
  if (basis == 0 || basis == 4) return period_days() - days_passed();
  return next().serial - settlement.serial;
}

double days_by_basis(const Day& start, const Day& end, int basis) noexcept {
  if (basis == 0) return days360_us(start, end);
  if (basis == 4) return days360(start, end, true);
  return end.serial - start.serial;
}

Day CouponGrid::start(int period) const { return moved(anchor, period, frequency, date1904); }

int CouponGrid::period_of(const Day& day) const {
  const int months = (day.date.year - anchor.date.year) * 12 + day.date.month - anchor.date.month;
  int period = months / (12 / frequency) - 2;
  while (start(period + 1).serial <= day.serial) ++period;
  return period;
}

double CouponGrid::length(int period) const {
  if (basis == 1) return start(period + 1).serial - start(period).serial;
  return (basis == 3 ? 365.0 : 360.0) / frequency;
}

double CouponGrid::between(const Day& from, const Day& to) const {
  const int last = period_of(to);
  double sum = 0;
  for (int period = period_of(from); period <= last; ++period) {
    const Day begin = start(period);
    const Day end = start(period + 1);
    const Day& first = begin.serial < from.serial ? from : begin;
    const Day& stop = to.serial < end.serial ? to : end;
    if (first.serial == begin.serial && stop.serial == end.serial)
      ++sum;
    else if (first.serial < stop.serial)
      sum += days_by_basis(first, stop, basis) / length(period);
  }
  return sum;
}

std::optional<Day> day_argument(const Call& call, int position) {
  return to_day(call.number(position), call.context().book().date1904);
}

std::optional<int> basis_argument(const Call& call, int position) {
  const double basis = std::trunc(call.number(position, 0));
  if (basis < 0 || basis > 4) return std::nullopt;
  return static_cast<int>(basis);
}

std::optional<int> frequency_argument(const Call& call, int position) {
  const double frequency = std::trunc(call.number(position));
  if (frequency != 1 && frequency != 2 && frequency != 4) return std::nullopt;
  return static_cast<int>(frequency);
}

}  // namespace qto::embedded::functions
