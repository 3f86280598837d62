#pragma once

/// Equal payments at equal intervals.
namespace qto::embedded::functions {

/// A loan or saving plan. Money paid out is negative; `at_start`: payments are due at the beginning
/// of each period.
struct Annuity {
  double rate = 0;
  double periods = 0;
  double payment = 0;
  double present = 0;
  double future = 0;
  bool at_start = false;

  double future_value() const;
  double present_value() const;
  double payment_due() const;
  double periods_needed() const;
  /// What is left over when the plan is followed: 0 when all fits.
  double balance() const;
  /// The interest part of the payment of a period from 1, for a plan whose payment is set.
  double interest(double period) const;
};

}  // namespace qto::embedded::functions
