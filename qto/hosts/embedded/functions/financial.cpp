#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/functions/annuity.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"
#include "qto/hosts/embedded/functions/root.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_fv(Call& call) {
  const Annuity plan{call.number(0),        call.number(1), call.number(2), call.number(3, 0), 0,
                     call.number(4, 0) != 0};
  return plan.future_value();
}

Operand fn_pv(Call& call) {
  const Annuity plan{call.number(0),    call.number(1),        call.number(2), 0,
                     call.number(3, 0), call.number(4, 0) != 0};
  if (plan.rate == -1) return ErrorValue::div0;
  return plan.present_value();
}

/// rate, periods, present, [future], [type] from argument `first` on.
Annuity loan(Call& call, int first) {
  Annuity plan{call.number(0),         call.number(first),        0,
               call.number(first + 1), call.number(first + 2, 0), call.number(first + 3, 0) != 0};
  plan.payment = plan.payment_due();
  return plan;
}

Operand fn_pmt(Call& call) {
  if (call.number(1) == 0) return ErrorValue::num;
  return loan(call, 1).payment;
}

Operand fn_nper(Call& call) {
  const Annuity plan{call.number(0),        0, call.number(1), call.number(2), call.number(3, 0),
                     call.number(4, 0) != 0};
  if (plan.rate <= -1) return ErrorValue::num;
  return plan.periods_needed();
}

template <bool interest>
Operand fn_payment_part(Call& call) {
  const double period = call.number(1);
  const Annuity plan = loan(call, 2);
  if (period < 1 || period >= plan.periods + 1) return ErrorValue::num;
  const double part = plan.interest(period);
  return interest ? part : plan.payment - part;
}

/// Periods that are added up one by one.
constexpr double most_periods = 1e6;

template <bool interest>
Operand fn_cumulative(Call& call) {
  Annuity plan{call.number(0), call.number(1), 0, call.number(2), 0, call.number(5) != 0};
  const double first = std::ceil(call.number(3));
  const double last = std::floor(call.number(4));
  const bool known_type = call.number(5) == 0 || call.number(5) == 1;
  if (plan.rate <= 0 || plan.periods <= 0 || plan.present <= 0 || first < 1 || last < first ||
      last > plan.periods || last - first > most_periods || !known_type)
    return ErrorValue::num;
  plan.payment = plan.payment_due();
  double sum = 0;
  for (double period = first; period <= last; ++period) {
    const double part = plan.interest(period);
    sum += interest ? part : plan.payment - part;
  }
  return sum;
}

Operand fn_ispmt(Call& call) {
  if (call.number(2) == 0) return ErrorValue::div0;
  return -call.number(3) * call.number(0) * (1 - call.number(1) / call.number(2));
}

Operand fn_rate(Call& call) {
  Annuity plan{
      0, call.number(0), call.number(1), call.number(2), call.number(3, 0), call.number(4, 0) != 0};
  if (plan.periods <= 0) return ErrorValue::num;
  const double guess = call.given(5) ? call.number(5) : 0.1;
  const auto root = find_root(
      [&](double rate) {
        plan.rate = rate;
        return plan.balance();
      },
      guess, -1);
  if (!root) return ErrorValue::num;
  // A rate this close to none is none.
  return std::fabs(*root) < 1e-13 ? 0.0 : *root;
}

double present_worth(const std::vector<double>& flows, double rate) {
  double worth = 0;
  double factor = 1;
  for (const double flow : flows) {
    if (flow != 0) worth += flow / factor;
    factor *= 1 + rate;
  }
  return worth;
}

Operand fn_npv(Call& call) {
  const auto flows = collect_numbers(call.context(), call.from(1));
  if (!flows) return flows.error();
  if (flows->empty()) return ErrorValue::value;
  if (call.number(0) == -1) return ErrorValue::div0;
  return present_worth(*flows, call.number(0)) / (1 + call.number(0));
}

bool has_both_signs(const std::vector<double>& flows) {
  return std::ranges::any_of(flows, [](double flow) { return flow > 0; }) &&
         std::ranges::any_of(flows, [](double flow) { return flow < 0; });
}

Operand fn_irr(Call& call) {
  const auto flows = collect_numbers(call.context(), call.from(0).first(1));
  if (!flows) return call[0].is_array() ? ErrorValue::value : flows.error();
  if (!has_both_signs(*flows)) return ErrorValue::num;
  const double guess = call.given(1) ? call.number(1) : 0.1;
  if (guess <= -1) return ErrorValue::value;
  const auto root = find_root([&](double rate) { return present_worth(*flows, rate); }, guess, -1);
  return root ? Operand(*root) : Operand(ErrorValue::num);
}

Operand fn_mirr(Call& call) {
  const auto flows = collect_numbers(call.context(), call.from(0).first(1));
  if (!flows) return flows.error();
  const double finance = call.number(1);
  const double reinvest = call.number(2);
  if (!has_both_signs(*flows)) return ErrorValue::div0;
  std::vector<double> gains = *flows;
  std::vector<double> costs = *flows;
  for (double& flow : gains) flow = std::max(flow, 0.0);
  for (double& flow : costs) flow = std::min(flow, 0.0);
  const double n = static_cast<double>(flows->size());
  const double end = present_worth(gains, reinvest) * std::pow(1 + reinvest, n - 1);
  return std::pow(-end / present_worth(costs, finance), 1 / (n - 1)) - 1;
}

/// Flows with their dates for XNPV and XIRR.
struct DatedFlows {
  std::vector<double> flows, days;
  double worth(double rate) const {
    double sum = 0;
    for (std::size_t i = 0; i < flows.size(); ++i)
      sum += flows[i] / std::pow(1 + rate, (days[i] - days[0]) / 365);
    return sum;
  }
};

/// True when an argument holds a text or a Boolean.
bool holds_others(Call& call, int i) {
  bool found = false;
  Grid(call.context(), call[i]).for_each([&](int, int, const ValueView& value) {
    found = value.is_text() || value.is_boolean();
    return !found;
  });
  return found;
}

Outcome<DatedFlows> dated_flows(Call& call, int first) {
  const auto days = collect_numbers(call.context(), call.from(first + 1).first(1));
  if (!days) return days.error();
  const auto flows = collect_numbers(call.context(), call.from(first).first(1));
  if (!flows) return flows.error();
  if (holds_others(call, first) || holds_others(call, first + 1)) return ErrorValue::value;
  DatedFlows dated{*flows, *days};
  if (dated.flows.size() != dated.days.size() || dated.flows.empty()) return ErrorValue::num;
  for (double& day : dated.days) {
    day = std::floor(day);
    if (day < dated.days[0] || day < 0) return ErrorValue::num;
  }
  return dated;
}

Operand fn_xnpv(Call& call) {
  const auto dated = dated_flows(call, 1);
  if (!dated) return dated.error();
  if (call.number(0) < 0) return ErrorValue::num;
  return dated->worth(call.number(0));
}

Operand fn_xirr(Call& call) {
  const auto dated = dated_flows(call, 0);
  if (!dated) return dated.error();
  if (!has_both_signs(dated->flows)) return ErrorValue::num;
  const double guess = call.given(2) ? call.number(2) : 0.1;
  if (guess <= -1) return ErrorValue::num;
  const auto root = find_root([&](double rate) { return dated->worth(rate); }, guess, -1);
  // A rate that swallows everything is the limit of the search and no answer.
  return root && *root > -0.999999 ? Operand(*root) : Operand(ErrorValue::num);
}

Operand fn_effect(Call& call) {
  const double periods = std::trunc(call.number(1));
  if (call.number(0) <= 0 || periods < 1) return ErrorValue::num;
  return std::pow(1 + call.number(0) / periods, periods) - 1;
}

Operand fn_nominal(Call& call) {
  const double periods = std::trunc(call.number(1));
  if (call.number(0) <= 0 || periods < 1) return ErrorValue::num;
  return (std::pow(1 + call.number(0), 1 / periods) - 1) * periods;
}

Operand fn_rri(Call& call) {
  if (call.number(0) <= 0 || call.number(1) == 0) return ErrorValue::num;
  return std::pow(call.number(2) / call.number(1), 1 / call.number(0)) - 1;
}

Operand fn_pduration(Call& call) {
  if (call.number(0) <= 0 || call.number(1) <= 0 || call.number(2) <= 0) return ErrorValue::num;
  return (std::log(call.number(2)) - std::log(call.number(1))) / std::log1p(call.number(0));
}

Operand fn_fvschedule(Call& call) {
  const auto rates = collect_numbers(call.context(), call.from(1));
  if (!rates) return rates.error();
  double worth = call.number(0);
  for (const double rate : *rates) worth *= 1 + rate;
  return worth;
}

/// A fractional dollar price ("1.02" as 1 and 2/16) to decimal or back.
template <bool to_decimal>
Operand fn_dollar_price(Call& call) {
  const double fraction = std::trunc(call.number(1));
  if (fraction < 0) return ErrorValue::num;
  if (fraction == 0) return ErrorValue::div0;
  const double whole = std::trunc(call.number(0));
  const double part = call.number(0) - whole;
  const double scale = std::pow(10, std::ceil(std::log10(fraction)));
  return to_decimal ? whole + part * scale / fraction : whole + part * fraction / scale;
}

// clang-format off
constexpr FunctionSpec financial_table[] = {
    {"CUMIPMT", 6, 6, plain, {strict_number}, fn_cumulative<true>,
     "rate, periods, present, start, end, type", "the interest paid between two periods",
     "=ROUND(CUMIPMT(0.01,12,1000,1,2,0),4)", "-19.2115"},
    {"CUMPRINC", 6, 6, plain, {strict_number}, fn_cumulative<false>,
     "rate, periods, present, start, end, type", "the principal paid between two periods",
     "=ROUND(CUMPRINC(0.01,12,1000,1,2,0),4)", "-158.4861"},
    {"DOLLARDE", 2, 2, plain, {number}, fn_dollar_price<true>, "price, fraction",
     "a fractional price as a decimal number", "=DOLLARDE(1.02,16)", "1.125"},
    {"DOLLARFR", 2, 2, plain, {number}, fn_dollar_price<false>, "price, fraction",
     "a decimal price as a fractional number", "=DOLLARFR(1.125,16)", "1.02"},
    {"EFFECT", 2, 2, plain, {strict_number}, fn_effect, "nominal_rate, periods",
     "the effective yearly rate", "=ROUND(EFFECT(0.12,12),6)", "0.126825"},
    {"FV", 3, 5, plain, {number}, fn_fv, "rate, periods, payment, [present], [type]",
     "what equal payments are worth at the end", "=ROUND(FV(0.01,12,-100),2)", "1268.25"},
    {"FVSCHEDULE", 2, 2, plain, {number, values}, fn_fvschedule, "principal, rates",
     "what an amount is worth after changing rates", "=FVSCHEDULE(100,{0.1,0.2})", "132"},
    {"IPMT", 4, 6, plain, {number}, fn_payment_part<true>,
     "rate, period, periods, present, [future], [type]", "the interest part of a payment",
     "=IPMT(0.01,1,12,1000)", "-10"},
    {"IRR", 1, 2, plain, {values, number}, fn_irr, "flows, [guess]",
     "the rate at which cash flows are worth nothing", "=ROUND(IRR({-100,60,60}),6)", "0.130662"},
    {"ISPMT", 4, 4, plain, {number}, fn_ispmt, "rate, period, periods, present",
     "the interest of a loan with equal principal payments", "=ISPMT(0.1,0,2,100)", "-10"},
    {"MIRR", 3, 3, plain, {values, number, number}, fn_mirr, "flows, finance_rate, reinvest_rate",
     "the rate of return with different rates for costs and gains",
     "=ROUND(MIRR({-100,60,60},0.1,0.12),6)", "0.12783"},
    {"NOMINAL", 2, 2, plain, {strict_number}, fn_nominal, "effective_rate, periods",
     "the nominal yearly rate", "=ROUND(NOMINAL(0.126825,12),4)", "0.12"},
    {"NPER", 3, 5, plain, {number}, fn_nper, "rate, payment, present, [future], [type]",
     "how many payments are needed", "=ROUND(NPER(0.01,-100,1000),4)", "10.5886"},
    {"NPV", 2, any_count, plain, {number, values}, fn_npv, "rate, value1, ...",
     "the present worth of cash flows", "=ROUND(NPV(0.1,{110,121}),6)", "200"},
    {"PDURATION", 3, 3, plain, {number}, fn_pduration, "rate, present, future",
     "the periods until an amount has grown to another", "=ROUND(PDURATION(0.1,100,121),6)", "2"},
    {"PMT", 3, 5, plain, {number}, fn_pmt, "rate, periods, present, [future], [type]",
     "the payment of a loan", "=ROUND(PMT(0.01,12,1000),4)", "-88.8488"},
    {"PPMT", 4, 6, plain, {number}, fn_payment_part<false>,
     "rate, period, periods, present, [future], [type]", "the principal part of a payment",
     "=ROUND(PPMT(0.01,1,12,1000),4)", "-78.8488"},
    {"PV", 3, 5, plain, {number}, fn_pv, "rate, periods, payment, [future], [type]",
     "what equal payments are worth now", "=ROUND(PV(0.01,12,-100),2)", "1125.51"},
    {"RATE", 3, 6, plain, {number}, fn_rate, "periods, payment, present, [future], [type], [guess]",
     "the rate of a loan", "=ROUND(RATE(12,-88.8488,1000),5)", "0.01"},
    {"RRI", 3, 3, plain, {number}, fn_rri, "periods, present, future",
     "the rate at which an amount grows to another", "=ROUND(RRI(2,100,121),6)", "0.1"},
    {"XIRR", 2, 3, plain, {values, values, strict_number}, fn_xirr, "flows, dates, [guess]",
     "the rate at which dated cash flows are worth nothing", "=ROUND(XIRR({-100,110},{1,366}),6)",
     "0.1"},
    {"XNPV", 3, 3, plain, {strict_number, values, values}, fn_xnpv, "rate, flows, dates",
     "the present worth of dated cash flows", "=ROUND(XNPV(0.1,{-100,110},{1,366}),6)", "0"},
};
// clang-format on
static_assert(well_formed(financial_table));

}  // namespace

std::span<const FunctionSpec> financial_functions() { return financial_table; }

}  // namespace qto::embedded::functions
