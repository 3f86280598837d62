#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/coupons.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/root.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_accrint(Call& call) {
  const auto issue = day_argument(call, 0);
  const auto first = day_argument(call, 1);
  const auto settlement = day_argument(call, 2);
  const double rate = call.number(3);
  const double par = call.given(4) ? call.number(4) : 1000;
  const auto frequency = frequency_argument(call, 5);
  const auto basis = basis_argument(call, 6);
  if (!issue || !first || !settlement || !basis || !frequency || rate <= 0 || par <= 0 ||
      issue->serial >= settlement->serial)
    return ErrorValue::num;
  const CouponGrid grid{*first, *frequency, *basis, call.context().book().date1904};
  // Interest from the first coupon day on only, when that was asked for.
  const bool from_issue = call.count() < 8 || call.logical(7);
  const Day& start = !from_issue && settlement->serial > first->serial ? *first : *issue;
  return par * rate / *frequency * grid.between(start, *settlement);
}

/// A security with an odd first period: settlement, maturity, issue and first coupon in order.
struct OddFirst {
  double coupon_rate, redemption;
  int frequency;
  int coupons;                  ///< regular ones, after the first
  double first_period;          ///< from issue to first coupon, in coupon periods
  double issue_to_settlement;   ///< the same to settlement
  double settlement_to_coupon;  ///< from settlement to the first coupon

  double price(double yield) const {
    const double coupon = 100 * coupon_rate / frequency;
    const double step = 1 + yield / frequency;
    double price = redemption / std::pow(step, coupons + settlement_to_coupon) +
                   coupon * first_period / std::pow(step, settlement_to_coupon) -
                   coupon * issue_to_settlement;
    for (int i = 1; i <= coupons; ++i) price += coupon / std::pow(step, i + settlement_to_coupon);
    return price;
  }
};

/// From settlement to the first coupon: the rest of its period, and whole periods after it.
double periods_ahead(const CouponGrid& grid, const Day& settlement) {
  const int period = grid.period_of(settlement);
  const bool thirty = grid.basis == 0 || grid.basis == 4;
  const double days =
      thirty ? grid.length(period) - days_by_basis(grid.start(period), settlement, grid.basis)
             : grid.start(period + 1).serial - settlement.serial;
  return days / grid.length(period) - (period + 1);
}

std::optional<OddFirst> odd_first(Call& call) {
  const auto settlement = day_argument(call, 0);
  const auto maturity = day_argument(call, 1);
  const auto issue = day_argument(call, 2);
  const auto first = day_argument(call, 3);
  const auto frequency = frequency_argument(call, 7);
  const auto basis = basis_argument(call, 8);
  if (!settlement || !maturity || !issue || !first || !frequency || !basis || call.number(4) < 0 ||
      call.number(5) < 0 || call.number(6) <= 0 || issue->serial >= settlement->serial ||
      settlement->serial >= first->serial || first->serial >= maturity->serial)
    return std::nullopt;
  const CouponGrid grid{*first, *frequency, *basis, call.context().book().date1904};
  const int coupons = grid.period_of(*maturity);
  // Maturity is a coupon day as the first one is.
  if (grid.start(coupons).serial != maturity->serial) return std::nullopt;
  return OddFirst{call.number(4),
                  call.number(6),
                  *frequency,
                  coupons,
                  grid.between(*issue, *first),
                  grid.between(*issue, *settlement),
                  periods_ahead(grid, *settlement)};
}

Operand fn_oddfprice(Call& call) {
  const auto odd = odd_first(call);
  return odd ? Operand(odd->price(call.number(5))) : Operand(ErrorValue::num);
}

Operand fn_oddfyield(Call& call) {
  const auto odd = odd_first(call);
  const double price = call.number(5);
  if (!odd || price <= 0) return ErrorValue::num;
  const auto root = find_root([&](double yield) { return odd->price(yield) - price; },
                              odd->coupon_rate > 0 ? odd->coupon_rate : 0.05, -odd->frequency);
  return root ? Operand(*root) : Operand(ErrorValue::num);
}

/// A security whose last coupon period is odd; times in coupon periods.
struct OddLast {
  double coupon;  ///< per whole period
  int frequency;
  double to_maturity, to_settlement, left;
};

std::optional<OddLast> odd_last(Call& call) {
  const auto settlement = day_argument(call, 0);
  const auto maturity = day_argument(call, 1);
  const auto last = day_argument(call, 2);
  const auto frequency = frequency_argument(call, 6);
  const auto basis = basis_argument(call, 7);
  if (!settlement || !maturity || !last || !basis || !frequency || call.number(3) < 0 ||
      call.number(4) < 0 || call.number(5) <= 0 || settlement->serial >= maturity->serial ||
      last->serial >= settlement->serial)
    return std::nullopt;
  const CouponGrid grid{*last, *frequency, *basis, call.context().book().date1904};
  return OddLast{100 * call.number(3) / *frequency, *frequency, grid.between(*last, *maturity),
                 grid.between(*last, *settlement), grid.between(*settlement, *maturity)};
}

Operand fn_oddlprice(Call& call) {
  const auto odd = odd_last(call);
  if (!odd) return ErrorValue::num;
  const double value = call.number(5) + odd->to_maturity * odd->coupon;
  return value / (odd->left * call.number(4) / odd->frequency + 1) -
         odd->to_settlement * odd->coupon;
}

Operand fn_oddlyield(Call& call) {
  const auto odd = odd_last(call);
  if (!odd) return ErrorValue::num;
  const double paid = call.number(4) + odd->to_settlement * odd->coupon;
  const double value = call.number(5) + odd->to_maturity * odd->coupon;
  return (value - paid) / paid * odd->frequency / odd->left;
}

// clang-format off
constexpr FunctionSpec odd_period_table[] = {
    {"ACCRINT", 6, 8, plain,
     {strict_number, strict_number, strict_number, strict_number, strict_number, strict_number, strict_number, logical},
     fn_accrint, "issue, first_interest, settlement, rate, par, frequency, [basis], [from_issue]",
     "the interest that has accrued", "=ROUND(ACCRINT(39508,39691,39569,0.1,1000,2,0),6)",
     "16.666667"},
    {"ODDFPRICE", 8, 9, plain, {strict_number}, fn_oddfprice,
     "settlement, maturity, issue, first_coupon, rate, yield, redemption, frequency, [basis]",
     "the price of a security with an odd first period",
     "=ROUND(ODDFPRICE(39763,44256,39736,39873,0.0785,0.0625,100,2,1),4)", "113.5977"},
    {"ODDFYIELD", 8, 9, plain, {strict_number}, fn_oddfyield,
     "settlement, maturity, issue, first_coupon, rate, price, redemption, frequency, [basis]",
     "the yield of a security with an odd first period",
     "=ROUND(ODDFYIELD(39763,44256,39736,39873,0.0575,84.5,100,2,0),6)", "0.077246"},
    {"ODDLPRICE", 7, 8, plain, {strict_number}, fn_oddlprice,
     "settlement, maturity, last_interest, rate, yield, redemption, frequency, [basis]",
     "the price of a security with an odd last period",
     "=ROUND(ODDLPRICE(39485,39614,39370,0.0375,0.0405,100,2,0),5)", "99.87829"},
    {"ODDLYIELD", 7, 8, plain, {strict_number}, fn_oddlyield,
     "settlement, maturity, last_interest, rate, price, redemption, frequency, [basis]",
     "the yield of a security with an odd last period",
     "=ROUND(ODDLYIELD(39558,39614,39440,0.0375,99.875,100,2,0),6)", "0.045192"},
};
// clang-format on
static_assert(well_formed(odd_period_table));

}  // namespace

std::span<const FunctionSpec> odd_period_functions() { return odd_period_table; }

}  // namespace qto::embedded::functions
