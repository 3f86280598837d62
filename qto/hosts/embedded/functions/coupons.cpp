#include "qto/hosts/embedded/functions/coupons.hpp"

#include <algorithm>

namespace qto::embedded::functions {

Day Coupons::before_maturity(int periods) const {
  const auto serial =
      add_months(maturity, -periods * (12 / frequency), maturity.last_of_month(), date1904);
  const auto day = to_day(serial.value_or(0), date1904);
  return day.value_or(Day{});
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

double year_by_basis(const Day& day, int basis) noexcept {
  if (basis == 1) return is_leap_year(day.date.year) ? 366 : 365;
  return basis == 3 ? 365 : 360;
}

}  // namespace qto::embedded::functions
