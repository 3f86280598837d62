#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/coupons.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/root.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// settlement, maturity, ... with frequency and basis at the given positions.
Outcome<Coupons> coupons_of(Call& call, int frequency_at) {
  const auto settlement = day_argument(call, 0);
  const auto maturity = day_argument(call, 1);
  const auto frequency = frequency_argument(call, frequency_at);
  const auto basis = basis_argument(call, frequency_at + 1);
  if (!settlement || !maturity || !basis || !frequency || settlement->serial >= maturity->serial)
    return ErrorValue::num;
  return Coupons{*settlement, *maturity, *frequency, *basis, call.context().book().date1904};
}

template <double (*F)(const Coupons&)>
Operand fn_coupon(Call& call) {
  const auto coupons = coupons_of(call, 2);
  return coupons ? Operand(F(*coupons)) : Operand(coupons.error());
}
double previous_serial(const Coupons& c) { return c.previous().serial; }
double next_serial(const Coupons& c) { return c.next().serial; }
double coupon_count(const Coupons& c) { return c.count(); }
double days_passed(const Coupons& c) { return c.days_passed(); }
double days_left(const Coupons& c) { return c.days_left(); }
double period_days(const Coupons& c) { return c.period_days(); }

/// The price per 100 of a security with coupons at a yearly yield.
double price_at(const Coupons& c, double rate, double yield, double redemption) {
  const double days = c.period_days();
  const double part = c.days_left() / days;
  const double coupon = 100 * rate / c.frequency;
  const double accrued = coupon * c.days_passed() / days;
  const int count = c.count();
  const double step = yield / c.frequency;
  if (count == 1) return (redemption + coupon) / (1 + part * step) - accrued;
  double price = redemption / std::pow(1 + step, count - 1 + part) - accrued;
  for (int i = 0; i < count; ++i) price += coupon / std::pow(1 + step, i + part);
  return price;
}

Operand fn_price(Call& call) {
  const auto coupons = coupons_of(call, 5);
  if (!coupons) return coupons.error();
  if (call.number(2) < 0 || call.number(3) < 0 || call.number(4) <= 0) return ErrorValue::num;
  return price_at(*coupons, call.number(2), call.number(3), call.number(4));
}

Operand fn_yield(Call& call) {
  const auto coupons = coupons_of(call, 5);
  if (!coupons) return coupons.error();
  const double rate = call.number(2);
  const double price = call.number(3);
  const double redemption = call.number(4);
  if (rate < 0 || price <= 0 || redemption <= 0) return ErrorValue::num;
  const auto root =
      find_root([&](double yield) { return price_at(*coupons, rate, yield, redemption) - price; },
                rate > 0 ? rate : 0.05, -coupons->frequency);
  return root ? Operand(*root) : Operand(ErrorValue::num);
}

/// Macaulay's duration in years.
double duration(const Coupons& c, double rate, double yield) {
  const double part = c.days_left() / c.period_days();
  const double coupon = 100 * rate / c.frequency;
  const double step = 1 + yield / c.frequency;
  const int count = c.count();
  double worth = 0;
  double weighted = 0;
  for (int i = 0; i < count; ++i) {
    const double time = i + part;
    const double flow = (coupon + (i == count - 1 ? 100 : 0)) / std::pow(step, time);
    worth += flow;
    weighted += flow * time;
  }
  return weighted / worth / c.frequency;
}

template <bool modified>
Operand fn_duration(Call& call) {
  const auto coupons = coupons_of(call, 4);
  if (!coupons) return coupons.error();
  if (call.number(2) < 0 || call.number(3) < 0) return ErrorValue::num;
  const double years = duration(*coupons, call.number(2), call.number(3));
  return modified ? years / (1 + call.number(3) / coupons->frequency) : years;
}

/// Part of a year from one argument's day to another's; nothing when they are out of order.
std::optional<double> years(Call& call, int start, int end, int basis_at) {
  const auto from = day_argument(call, start);
  const auto to = day_argument(call, end);
  const auto basis = basis_argument(call, basis_at);
  if (!from || !to || !basis || from->serial >= to->serial) return std::nullopt;
  return year_fraction(*from, *to, *basis);
}

Operand fn_accrintm(Call& call) {
  const auto time = years(call, 0, 1, 4);
  const double par = call.given(3) ? call.number(3) : 1000;
  if (!time || call.number(2) <= 0 || par <= 0) return ErrorValue::num;
  return par * call.number(2) * *time;
}

Operand fn_disc(Call& call) {
  const auto time = years(call, 0, 1, 4);
  if (!time || call.number(2) <= 0 || call.number(3) <= 0) return ErrorValue::num;
  return (call.number(3) - call.number(2)) / call.number(3) / *time;
}

Operand fn_intrate(Call& call) {
  const auto time = years(call, 0, 1, 4);
  if (!time || call.number(2) <= 0 || call.number(3) <= 0) return ErrorValue::num;
  return (call.number(3) - call.number(2)) / call.number(2) / *time;
}

Operand fn_received(Call& call) {
  const auto time = years(call, 0, 1, 4);
  if (!time || call.number(2) <= 0 || call.number(3) <= 0) return ErrorValue::num;
  return call.number(2) / (1 - call.number(3) * *time);
}

Operand fn_pricedisc(Call& call) {
  const auto time = years(call, 0, 1, 4);
  if (!time || call.number(2) <= 0 || call.number(3) <= 0) return ErrorValue::num;
  return call.number(3) * (1 - call.number(2) * *time);
}

Operand fn_yielddisc(Call& call) {
  const auto time = years(call, 0, 1, 4);
  if (!time || call.number(2) <= 0 || call.number(3) <= 0) return ErrorValue::num;
  return (call.number(3) / call.number(2) - 1) / *time;
}

/// The times of a security that pays its interest at maturity.
struct AtMaturity {
  double issue_to_maturity, issue_to_settlement, settlement_to_maturity;
};
std::optional<AtMaturity> at_maturity(Call& call) {
  const auto all = years(call, 2, 1, 5);
  const auto left = years(call, 0, 1, 5);
  const auto settlement = day_argument(call, 0);
  const auto issue = day_argument(call, 2);
  if (!all || !left || issue->serial > settlement->serial) return std::nullopt;
  return AtMaturity{*all, year_fraction(*issue, *settlement, *basis_argument(call, 5)), *left};
}

Operand fn_pricemat(Call& call) {
  const auto times = at_maturity(call);
  const double rate = call.number(3);
  const double yield = call.number(4);
  if (!times || rate < 0 || yield < 0) return ErrorValue::num;
  return (100 + times->issue_to_maturity * rate * 100) /
             (1 + times->settlement_to_maturity * yield) -
         times->issue_to_settlement * rate * 100;
}

Operand fn_yieldmat(Call& call) {
  const auto times = at_maturity(call);
  const double rate = call.number(3);
  const double price = call.number(4);
  if (!times || rate < 0 || price <= 0) return ErrorValue::num;
  const double paid = price / 100 + times->issue_to_settlement * rate;
  return ((1 + times->issue_to_maturity * rate) / paid - 1) / times->settlement_to_maturity;
}

/// Days to the maturity of a treasury bill, which lives a year at most.
std::optional<double> bill_days(Call& call) {
  const auto settlement = day_argument(call, 0);
  const auto maturity = day_argument(call, 1);
  if (!settlement || !maturity || settlement->serial >= maturity->serial) return std::nullopt;
  const auto limit = add_months(*settlement, 12, false, call.context().book().date1904);
  if (!limit || maturity->serial > *limit) return std::nullopt;
  return maturity->serial - settlement->serial;
}

Operand fn_tbillprice(Call& call) {
  const auto days = bill_days(call);
  if (!days || call.number(2) <= 0) return ErrorValue::num;
  const double price = 100 * (1 - call.number(2) * *days / 360);
  return price < 0 ? Operand(ErrorValue::num) : Operand(price);
}

Operand fn_tbillyield(Call& call) {
  const auto days = bill_days(call);
  if (!days || call.number(2) <= 0) return ErrorValue::num;
  return (100 - call.number(2)) / call.number(2) * 360 / *days;
}

Operand fn_tbilleq(Call& call) {
  const auto days = bill_days(call);
  const double discount = call.number(2);
  if (!days || discount <= 0) return ErrorValue::num;
  if (*days <= 182) return 365 * discount / (360 - discount * *days);
  // Beyond half a year the bond it is compared with pays a coupon in between.
  const double price = 1 - discount * *days / 360;
  const double term = *days / (*days == 366 ? 366 : 365);
  if (price <= 0) return ErrorValue::num;
  return (-2 * term + 2 * std::sqrt(term * term - (2 * term - 1) * (1 - 1 / price))) /
         (2 * term - 1);
}

// clang-format off
constexpr FunctionSpec security_table[] = {
    {"ACCRINTM", 3, 5, plain, {strict_number}, fn_accrintm,
     "issue, settlement, rate, [par], [basis]",
     "the interest that has accrued when it is paid at maturity",
     "=ROUND(ACCRINTM(39539,39614,0.1,1000,3),6)", "20.547945"},
    {"COUPDAYBS", 3, 4, plain, {strict_number}, fn_coupon<days_passed>,
     "settlement, maturity, frequency, [basis]", "the days of the coupon period before settlement",
     "=COUPDAYBS(40568,40862,2,1)", "71"},
    {"COUPDAYS", 3, 4, plain, {strict_number}, fn_coupon<period_days>,
     "settlement, maturity, frequency, [basis]", "the days of the coupon period",
     "=COUPDAYS(40568,40862,2,1)", "181"},
    {"COUPDAYSNC", 3, 4, plain, {strict_number}, fn_coupon<days_left>,
     "settlement, maturity, frequency, [basis]", "the days to the next coupon",
     "=COUPDAYSNC(40568,40862,2,1)", "110"},
    {"COUPNCD", 3, 4, plain, {strict_number}, fn_coupon<next_serial>,
     "settlement, maturity, frequency, [basis]", "the next coupon day", "=COUPNCD(40568,40862,2,1)",
     "40678"},
    {"COUPNUM", 3, 4, plain, {strict_number}, fn_coupon<coupon_count>,
     "settlement, maturity, frequency, [basis]", "how many coupons are left",
     "=COUPNUM(39107,39767,2,1)", "4"},
    {"COUPPCD", 3, 4, plain, {strict_number}, fn_coupon<previous_serial>,
     "settlement, maturity, frequency, [basis]", "the coupon day before settlement",
     "=COUPPCD(40568,40862,2,1)", "40497"},
    {"DISC", 4, 5, plain, {strict_number}, fn_disc,
     "settlement, maturity, price, redemption, [basis]", "the discount rate",
     "=ROUND(DISC(43282,50771,97.975,100,1),6)", "0.000988"},
    {"DURATION", 5, 6, plain, {strict_number}, fn_duration<false>,
     "settlement, maturity, rate, yield, frequency, [basis]", "the Macaulay duration",
     "=ROUND(DURATION(39448,42370,0.08,0.09,2,1),6)", "5.993775"},
    {"INTRATE", 4, 5, plain, {strict_number}, fn_intrate,
     "settlement, maturity, investment, redemption, [basis]",
     "the interest rate of a fully invested security",
     "=ROUND(INTRATE(39493,39583,1000000,1014420,2),6)", "0.05768"},
    {"MDURATION", 5, 6, plain, {strict_number}, fn_duration<true>,
     "settlement, maturity, rate, yield, frequency, [basis]", "the modified duration",
     "=ROUND(MDURATION(39448,42370,0.08,0.09,2,1),6)", "5.73567"},
    {"PRICE", 6, 7, plain, {strict_number}, fn_price,
     "settlement, maturity, rate, yield, redemption, frequency, [basis]",
     "the price of a security with coupons", "=ROUND(PRICE(39493,43054,0.0575,0.065,100,2,0),5)",
     "94.63436"},
    {"PRICEDISC", 4, 5, plain, {strict_number}, fn_pricedisc,
     "settlement, maturity, discount, redemption, [basis]", "the price of a discounted security",
     "=ROUND(PRICEDISC(39494,39508,0.0525,100,2),6)", "99.795833"},
    {"PRICEMAT", 5, 6, plain, {strict_number}, fn_pricemat,
     "settlement, maturity, issue, rate, yield, [basis]",
     "the price of a security that pays at maturity",
     "=ROUND(PRICEMAT(39493,39551,39397,0.061,0.061,0),5)", "99.9845"},
    {"RECEIVED", 4, 5, plain, {strict_number}, fn_received,
     "settlement, maturity, investment, discount, [basis]", "what is received at maturity",
     "=ROUND(RECEIVED(39493,39583,1000000,0.0575,2),2)", "1014584.65"},
    {"TBILLEQ", 3, 3, plain, {strict_number}, fn_tbilleq, "settlement, maturity, discount",
     "the bond-equivalent yield of a treasury bill", "=ROUND(TBILLEQ(39538,39600,0.0914),6)",
     "0.094151"},
    {"TBILLPRICE", 3, 3, plain, {strict_number}, fn_tbillprice, "settlement, maturity, discount",
     "the price of a treasury bill", "=TBILLPRICE(39538,39600,0.09)", "98.45"},
    {"TBILLYIELD", 3, 3, plain, {strict_number}, fn_tbillyield, "settlement, maturity, price",
     "the yield of a treasury bill", "=ROUND(TBILLYIELD(39538,39600,98.45),6)", "0.091417"},
    {"YIELD", 6, 7, plain, {strict_number}, fn_yield,
     "settlement, maturity, rate, price, redemption, frequency, [basis]",
     "the yield of a security with coupons", "=ROUND(YIELD(39493,42689,0.0575,95.04287,100,2,0),6)",
     "0.065"},
    {"YIELDDISC", 4, 5, plain, {strict_number}, fn_yielddisc,
     "settlement, maturity, price, redemption, [basis]", "the yield of a discounted security",
     "=ROUND(YIELDDISC(39494,39508,99.795,100,2),6)", "0.052823"},
    {"YIELDMAT", 5, 6, plain, {strict_number}, fn_yieldmat,
     "settlement, maturity, issue, rate, price, [basis]",
     "the yield of a security that pays at maturity",
     "=ROUND(YIELDMAT(39522,39755,39394,0.0625,100.0123,0),6)", "0.060954"},
};
// clang-format on
static_assert(well_formed(security_table));

}  // namespace

std::span<const FunctionSpec> security_functions() { return security_table; }

}  // namespace qto::embedded::functions
