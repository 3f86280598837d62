#include "qto/hosts/embedded/functions/annuity.hpp"

#include <cmath>

namespace qto::embedded::functions {

namespace {

/// ((1 + rate)^periods - 1) / rate, the worth of payments of 1 at the end.
double payments_factor(double rate, double periods) {
  if (rate == 0) return periods;
  // Little growth would lose its digits beside the 1.
  if (std::fabs(rate * periods) < 0.5) return std::expm1(periods * std::log1p(rate)) / rate;
  return (std::pow(1 + rate, periods) - 1) / rate;
}

double due_factor(const Annuity& plan) { return plan.at_start ? 1 + plan.rate : 1; }

}  // namespace

double Annuity::future_value() const {
  return -present * std::pow(1 + rate, periods) -
         payment * due_factor(*this) * payments_factor(rate, periods);
}

double Annuity::present_value() const {
  return (-future - payment * due_factor(*this) * payments_factor(rate, periods)) /
         std::pow(1 + rate, periods);
}

double Annuity::payment_due() const {
  return (-future - present * std::pow(1 + rate, periods)) /
         (due_factor(*this) * payments_factor(rate, periods));
}

double Annuity::periods_needed() const {
  if (rate == 0) return -(present + future) / payment;
  const double due = payment * due_factor(*this);
  return std::log((due - future * rate) / (due + present * rate)) / std::log1p(rate);
}

double Annuity::balance() const {
  return present * std::pow(1 + rate, periods) +
         payment * due_factor(*this) * payments_factor(rate, periods) + future;
}

double Annuity::interest(double period) const {
  if (at_start && period == 1) return 0;
  Annuity before = *this;
  before.periods = at_start ? period - 2 : period - 1;
  double owed = before.future_value();
  if (at_start) owed -= payment;
  return owed * rate;
}

}  // namespace qto::embedded::functions
