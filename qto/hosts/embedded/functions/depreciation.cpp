#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/day_count.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Lives are gone through period by period.
constexpr double longest_life = 1e6;

Operand fn_sln(Call& call) {
  if (call.number(2) == 0) return ErrorValue::div0;
  return (call.number(0) - call.number(1)) / call.number(2);
}

Operand fn_syd(Call& call) {
  const double life = call.number(2);
  const double period = call.number(3);
  if (life <= 0 || period < 1 || period > life) return ErrorValue::num;
  return (call.number(0) - call.number(1)) * (life - period + 1) * 2 / (life * (life + 1));
}

Operand fn_db(Call& call) {
  const double cost = call.number(0);
  const double salvage = call.number(1);
  const double life = call.number(2);
  const double period = std::trunc(call.number(3));
  const double months = call.given(4) ? std::trunc(call.number(4)) : 12;
  if (cost < 0 || salvage < 0 || life <= 0 || period < 1 || months < 1 || months > 12)
    return ErrorValue::num;
  if (period > (months == 12 ? std::ceil(life) : std::ceil(life) + 1)) return ErrorValue::num;
  if (life > longest_life) return ErrorValue::num;
  if (cost == 0) return 0.0;
  const double rate = round_to_places(1 - std::pow(salvage / cost, 1 / life), 3);
  double written_off = cost * rate * months / 12;
  if (period == 1) return written_off;
  double step = 0;
  for (double i = 2; i <= period; ++i) {
    step = (cost - written_off) * rate;
    if (i > life) step *= (12 - months) / 12;
    written_off += step;
  }
  return step;
}

/// Double declining balance of one period, which never writes off below the salvage value.
double declining(double cost, double salvage, double life, double period, double factor) {
  const double rate = std::min(factor / life, 1.0);
  const double before =
      rate == 1 ? (period == 1 ? cost : 0) : cost * std::pow(1 - rate, period - 1);
  const double after = cost * std::pow(1 - rate, period);
  return std::max(0.0, before - std::max(after, salvage));
}

Operand fn_ddb(Call& call) {
  const double cost = call.number(0);
  const double salvage = call.number(1);
  const double life = call.number(2);
  const double period = call.number(3);
  const double factor = call.given(4) ? call.number(4) : 2;
  if (cost < 0 || salvage < 0 || life <= 0 || period < 1 || period > life || factor <= 0)
    return ErrorValue::num;
  return declining(cost, salvage, life, period, factor);
}

/// An asset that is written off by a declining balance, and by equal parts of the rest as soon as
/// those are larger.
struct DecliningBalance {
  double cost, salvage, life, rate;
  bool switching;

  /// What is written off in a stretch of at most one period, given the value at its start.
  double step(double value, double at, double length) const {
    const double left = std::max(value - salvage, 0.0);
    const double declining = std::min(value * rate, left);
    const double equal = left / (life - at);
    return length * (switching ? std::max(declining, equal) : declining);
  }

  /// Periods count from the fraction of a period at which `start` lies.
  double written_off(double start, double end) const {
    double value = cost;
    double sum = 0;
    const double part = start - std::floor(start);
    for (double at = 0; at < end;) {
      const double length = at == 0 && part > 0 ? part : 1.0;
      const double whole = step(value, at, length);
      const double next = std::min(at + length, end);
      if (at >= start) sum += next < at + length ? whole * (next - at) / length : whole;
      value -= whole;
      at += length;
    }
    return sum;
  }
};

Operand fn_vdb(Call& call) {
  const double cost = call.number(0);
  const double salvage = call.number(1);
  const double life = call.number(2);
  const double start = call.number(3);
  const double end = call.number(4);
  const double factor = call.given(5) ? call.number(5) : 2;
  const bool switching = !call.logical(6, false);
  if (cost < 0 || salvage < 0 || life <= 0 || start < 0 || end < start || end > life ||
      factor <= 0 || life > longest_life)
    return ErrorValue::num;
  return DecliningBalance{cost, salvage, life, std::min(factor / life, 1.0), switching}.written_off(
      start, end);
}

/// The common arguments of the French methods.
struct French {
  double cost, salvage, period, rate, first_part;
};

Outcome<French> french(Call& call) {
  const bool date1904 = call.context().book().date1904;
  const auto bought = to_day(call.number(1), date1904);
  const auto first_end = to_day(call.number(2), date1904);
  const double basis = std::trunc(call.number(6, 0));
  const French plan{call.number(0), call.number(3), std::trunc(call.number(4)), call.number(5), 0};
  if (!bought || !first_end || basis < 0 || basis > 4 || basis == 2) return ErrorValue::num;
  if (plan.cost <= 0 || plan.salvage < 0 || plan.salvage > plan.cost || plan.period < 0 ||
      plan.rate <= 0 || bought->serial > first_end->serial)
    return ErrorValue::num;
  French result = plan;
  result.first_part = year_fraction(*bought, *first_end, static_cast<int>(basis));
  return result;
}

Operand fn_amorlinc(Call& call) {
  const auto plan = french(call);
  if (!plan) return plan.error();
  const double yearly = plan->cost * plan->rate;
  const double total = plan->cost - plan->salvage;
  const double first = std::min(yearly * plan->first_part, total);
  if (plan->period == 0) return plan->first_part == 0 ? yearly : first;
  const double before = first + yearly * (plan->period - 1);
  return std::clamp(total - before, 0.0, yearly);
}

Operand fn_amordegrc(Call& call) {
  const auto plan = french(call);
  if (!plan) return plan.error();
  const double life = 1 / plan->rate;
  const double weight = life < 3 ? 1 : life < 5 ? 1.5 : life <= 6 ? 2 : 2.5;
  const double rate = plan->rate * weight;
  double step = std::round(plan->first_part * rate * plan->cost);
  double value = plan->cost - step;
  double rest = value - plan->salvage;
  if (plan->period == 0) return step;
  for (double i = 0; i < plan->period; ++i) {
    step = std::round(rate * value);
    if (step == 0) return 0.0;
    rest -= step;
    if (rest < 0) {
      const double left = plan->period - i;
      return left == 1 || left == 2 ? std::round(value * 0.5) : 0.0;
    }
    value -= step;
  }
  return step;
}

// clang-format off
constexpr FunctionSpec depreciation_table[] = {
    {"AMORDEGRC", 6, 7, plain, {strict_number}, fn_amordegrc,
     "cost, bought, first_period, salvage, period, rate, [basis]",
     "French depreciation by a coefficient", "=AMORDEGRC(2400,39679,39813,300,1,0.15,1)", "776"},
    {"AMORLINC", 6, 7, plain, {strict_number}, fn_amorlinc,
     "cost, bought, first_period, salvage, period, rate, [basis]", "French linear depreciation",
     "=AMORLINC(2400,39679,39813,300,1,0.15,1)", "360"},
    {"DB", 4, 5, plain, {number}, fn_db, "cost, salvage, life, period, [months]",
     "declining balance depreciation", "=ROUND(DB(1000000,100000,6,1,7),2)", "186083.33"},
    {"DDB", 4, 5, plain, {number}, fn_ddb, "cost, salvage, life, period, [factor]",
     "double declining balance depreciation", "=DDB(2400,300,10,1)", "480"},
    {"SLN", 3, 3, plain, {number}, fn_sln, "cost, salvage, life", "straight-line depreciation",
     "=SLN(30000,7500,10)", "2250"},
    {"SYD", 4, 4, plain, {number}, fn_syd, "cost, salvage, life, period",
     "depreciation by the sum of years", "=ROUND(SYD(30000,7500,10,1),2)", "4090.91"},
    {"VDB", 5, 7, plain, {number, number, number, number, number, number, logical}, fn_vdb,
     "cost, salvage, life, start, end, [factor], [no_switch]",
     "variable declining balance depreciation", "=VDB(2400,300,10,0,1)", "480"},
};
// clang-format on
static_assert(well_formed(depreciation_table));

}  // namespace

std::span<const FunctionSpec> depreciation_functions() { return depreciation_table; }

}  // namespace qto::embedded::functions
