#include <cmath>
#include <optional>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

enum class Kind : std::uint8_t {
  mass,
  distance,
  time,
  pressure,
  force,
  energy,
  power,
  magnetism,
  temperature,
  volume,
  area,
  information,
  speed
};

/// Whether a unit takes prefixes: none, decimal ones, or binary ones as well.
enum class Prefixes : std::uint8_t { none, decimal, binary };

struct Unit {
  std::string_view name;
  Kind kind;
  double size;  ///< in the base unit of its kind
  Prefixes prefixes = Prefixes::none;
  int dimension = 1;  ///< the power that a prefix takes: 2 for areas, 3 for volumes
};

constexpr auto decimal = Prefixes::decimal;
constexpr double inch = 0.0254;
constexpr double foot = 0.3048;
constexpr double yard = 0.9144;
constexpr double mile = 1609.344;
constexpr double nautical_mile = 1852;
constexpr double survey_mile = 5280 * 1200.0 / 3937;
constexpr double light_year = 9460730472580800;
constexpr double pica = inch / 72;
constexpr double angstrom = 1e-10;
constexpr double pound = 453.59237;
constexpr double gallon = 231 * inch * inch * inch * 1000;  // in litres
constexpr double imperial_gallon = 4.54609;
constexpr double cubic_metre = 1000;
constexpr double hour = 3600;
constexpr double gravity = 9.80665;
constexpr double calorie = 4.184;
constexpr double steam_calorie = 4.1868;
constexpr double horse_hour = 550 * foot * pound / 1000 * gravity * hour;

constexpr double square(double x) { return x * x; }
constexpr double cube(double x) { return x * x * x; }

constexpr Unit units[] = {
    {"g", Kind::mass, 1, decimal},
    {"sg", Kind::mass, 1000 * pound / 1000 * gravity / foot},
    {"lbm", Kind::mass, pound},
    {"u", Kind::mass, 1.66053100460465e-24, decimal},
    {"ozm", Kind::mass, pound / 16},
    {"grain", Kind::mass, pound / 7000},
    {"cwt", Kind::mass, 100 * pound},
    {"shweight", Kind::mass, 100 * pound},
    {"uk_cwt", Kind::mass, 112 * pound},
    {"lcwt", Kind::mass, 112 * pound},
    {"hweight", Kind::mass, 112 * pound},
    {"stone", Kind::mass, 14 * pound},
    {"ton", Kind::mass, 2000 * pound},
    {"uk_ton", Kind::mass, 2240 * pound},
    {"LTON", Kind::mass, 2240 * pound},
    {"brton", Kind::mass, 2240 * pound},
    {"m", Kind::distance, 1, decimal},
    {"mi", Kind::distance, mile},
    {"Nmi", Kind::distance, nautical_mile},
    {"in", Kind::distance, inch},
    {"ft", Kind::distance, foot},
    {"yd", Kind::distance, yard},
    {"ang", Kind::distance, angstrom, decimal},
    {"ell", Kind::distance, 45 * inch},
    {"ly", Kind::distance, light_year, decimal},
    {"parsec", Kind::distance, 3.08567758128155e16, decimal},
    {"pc", Kind::distance, 3.08567758128155e16, decimal},
    {"Picapt", Kind::distance, pica},
    {"Pica", Kind::distance, pica},
    {"pica", Kind::distance, inch / 6},
    {"survey_mi", Kind::distance, survey_mile},
    {"yr", Kind::time, 365.25 * 24 * hour},
    {"day", Kind::time, 24 * hour},
    {"d", Kind::time, 24 * hour},
    {"hr", Kind::time, hour},
    {"mn", Kind::time, 60},
    {"min", Kind::time, 60},
    {"sec", Kind::time, 1, decimal},
    {"s", Kind::time, 1, decimal},
    {"Pa", Kind::pressure, 1, decimal},
    {"p", Kind::pressure, 1, decimal},
    {"atm", Kind::pressure, 101325, decimal},
    {"at", Kind::pressure, 101325, decimal},
    {"mmHg", Kind::pressure, 133.322, decimal},
    {"psi", Kind::pressure, 6894.75729316836},
    {"Torr", Kind::pressure, 101325.0 / 760},
    {"N", Kind::force, 1, decimal},
    {"dyn", Kind::force, 1e-5, decimal},
    {"dy", Kind::force, 1e-5, decimal},
    {"lbf", Kind::force, pound / 1000 * gravity},
    {"pond", Kind::force, gravity / 1000, decimal},
    {"J", Kind::energy, 1, decimal},
    {"e", Kind::energy, 1e-7, decimal},
    {"c", Kind::energy, calorie, decimal},
    {"cal", Kind::energy, steam_calorie, decimal},
    {"eV", Kind::energy, 1.60217648740000e-19, decimal},
    {"ev", Kind::energy, 1.60217648740000e-19, decimal},
    {"HPh", Kind::energy, horse_hour},
    {"hh", Kind::energy, horse_hour},
    {"Wh", Kind::energy, hour, decimal},
    {"wh", Kind::energy, hour, decimal},
    {"flb", Kind::energy, foot* pound / 1000 * gravity},
    {"BTU", Kind::energy, 1055.05585262},
    {"btu", Kind::energy, 1055.05585262},
    {"HP", Kind::power, horse_hour / hour},
    {"h", Kind::power, horse_hour / hour},
    {"PS", Kind::power, 75 * gravity},
    {"W", Kind::power, 1, decimal},
    {"w", Kind::power, 1, decimal},
    {"T", Kind::magnetism, 1, decimal},
    {"ga", Kind::magnetism, 1e-4, decimal},
    {"C", Kind::temperature, 0},
    {"cel", Kind::temperature, 0},
    {"F", Kind::temperature, 0},
    {"fah", Kind::temperature, 0},
    {"K", Kind::temperature, 0, decimal},
    {"kel", Kind::temperature, 0, decimal},
    {"Rank", Kind::temperature, 0},
    {"Reau", Kind::temperature, 0},
    {"tsp", Kind::volume, gallon / 768},
    {"tspm", Kind::volume, 0.005},
    {"tbs", Kind::volume, gallon / 256},
    {"oz", Kind::volume, gallon / 128},
    {"cup", Kind::volume, gallon / 16},
    {"pt", Kind::volume, gallon / 8},
    {"us_pt", Kind::volume, gallon / 8},
    {"uk_pt", Kind::volume, imperial_gallon / 8},
    {"qt", Kind::volume, gallon / 4},
    {"uk_qt", Kind::volume, imperial_gallon / 4},
    {"gal", Kind::volume, gallon},
    {"uk_gal", Kind::volume, imperial_gallon},
    {"l", Kind::volume, 1, decimal},
    {"L", Kind::volume, 1, decimal},
    {"lt", Kind::volume, 1, decimal},
    {"ang3", Kind::volume, cube(angstrom) * cubic_metre, decimal, 3},
    {"ang^3", Kind::volume, cube(angstrom) * cubic_metre, decimal, 3},
    {"barrel", Kind::volume, 42 * gallon},
    {"bushel", Kind::volume, 2150.42 * cube(inch) * cubic_metre},
    {"ft3", Kind::volume, cube(foot) * cubic_metre},
    {"ft^3", Kind::volume, cube(foot) * cubic_metre},
    {"in3", Kind::volume, cube(inch) * cubic_metre},
    {"in^3", Kind::volume, cube(inch) * cubic_metre},
    {"ly3", Kind::volume, cube(light_year) * cubic_metre},
    {"ly^3", Kind::volume, cube(light_year) * cubic_metre},
    {"m3", Kind::volume, cubic_metre, decimal, 3},
    {"m^3", Kind::volume, cubic_metre, decimal, 3},
    {"mi3", Kind::volume, cube(mile) * cubic_metre},
    {"mi^3", Kind::volume, cube(mile) * cubic_metre},
    {"yd3", Kind::volume, cube(yard) * cubic_metre},
    {"yd^3", Kind::volume, cube(yard) * cubic_metre},
    {"Nmi3", Kind::volume, cube(nautical_mile) * cubic_metre},
    {"Nmi^3", Kind::volume, cube(nautical_mile) * cubic_metre},
    {"Picapt3", Kind::volume, cube(pica) * cubic_metre},
    {"Picapt^3", Kind::volume, cube(pica) * cubic_metre},
    {"Pica3", Kind::volume, cube(pica) * cubic_metre},
    {"Pica^3", Kind::volume, cube(pica) * cubic_metre},
    {"GRT", Kind::volume, 100 * cube(foot) * cubic_metre},
    {"regton", Kind::volume, 100 * cube(foot) * cubic_metre},
    {"MTON", Kind::volume, 40 * cube(foot) * cubic_metre},
    {"uk_acre", Kind::area, 4840 * square(yard)},
    {"us_acre", Kind::area, square(survey_mile) / 640},
    {"ang2", Kind::area, square(angstrom), decimal, 2},
    {"ang^2", Kind::area, square(angstrom), decimal, 2},
    {"ar", Kind::area, 100, decimal},
    {"ft2", Kind::area, square(foot)},
    {"ft^2", Kind::area, square(foot)},
    {"ha", Kind::area, 10000},
    {"in2", Kind::area, square(inch)},
    {"in^2", Kind::area, square(inch)},
    {"ly2", Kind::area, square(light_year)},
    {"ly^2", Kind::area, square(light_year)},
    {"m2", Kind::area, 1, decimal, 2},
    {"m^2", Kind::area, 1, decimal, 2},
    {"Morgen", Kind::area, 2500},
    {"mi2", Kind::area, square(mile)},
    {"mi^2", Kind::area, square(mile)},
    {"Nmi2", Kind::area, square(nautical_mile)},
    {"Nmi^2", Kind::area, square(nautical_mile)},
    {"Picapt2", Kind::area, square(pica)},
    {"Pica2", Kind::area, square(pica)},
    {"Pica^2", Kind::area, square(pica)},
    {"Picapt^2", Kind::area, square(pica)},
    {"yd2", Kind::area, square(yard)},
    {"yd^2", Kind::area, square(yard)},
    {"bit", Kind::information, 1, Prefixes::binary},
    {"byte", Kind::information, 8, Prefixes::binary},
    {"admkn", Kind::speed, 6080 * foot / hour},
    {"kn", Kind::speed, nautical_mile / hour},
    {"m/h", Kind::speed, 1 / hour, decimal},
    {"m/hr", Kind::speed, 1 / hour, decimal},
    {"m/s", Kind::speed, 1, decimal},
    {"m/sec", Kind::speed, 1, decimal},
    {"mph", Kind::speed, mile / hour},
};

struct Prefix {
  std::string_view name;
  double factor;
  bool binary = false;
};
constexpr Prefix prefixes[] = {{"Y", 1e24},
                               {"Z", 1e21},
                               {"E", 1e18},
                               {"P", 1e15},
                               {"T", 1e12},
                               {"G", 1e9},
                               {"M", 1e6},
                               {"k", 1e3},
                               {"h", 1e2},
                               {"da", 10},
                               {"e", 10},
                               {"d", 0.1},
                               {"c", 0.01},
                               {"m", 1e-3},
                               {"u", 1e-6},
                               {"n", 1e-9},
                               {"p", 1e-12},
                               {"f", 1e-15},
                               {"a", 1e-18},
                               {"z", 1e-21},
                               {"y", 1e-24},
                               {"Yi", 0x1p80, true},
                               {"Zi", 0x1p70, true},
                               {"Ei", 0x1p60, true},
                               {"Pi", 0x1p50, true},
                               {"Ti", 0x1p40, true},
                               {"Gi", 0x1p30, true},
                               {"Mi", 0x1p20, true},
                               {"ki", 0x1p10, true}};

const Unit* find_unit(std::string_view name) {
  for (const Unit& unit : units)
    if (unit.name == name) return &unit;
  return nullptr;
}

/// A unit as written, with what its prefix multiplies by.
struct Written {
  const Unit* unit;
  double factor;
};

std::optional<Written> read(std::string_view text) {
  if (const Unit* unit = find_unit(text)) return Written{unit, 1};
  for (const Prefix& prefix : prefixes) {
    if (!text.starts_with(prefix.name)) continue;
    const Unit* unit = find_unit(text.substr(prefix.name.size()));
    if (!unit || unit->prefixes == Prefixes::none) continue;
    if (prefix.binary && unit->prefixes != Prefixes::binary) continue;
    return Written{unit, std::pow(prefix.factor, unit->dimension)};
  }
  return std::nullopt;
}

double to_kelvin(double value, std::string_view unit) {
  if (unit == "C" || unit == "cel") return value + 273.15;
  if (unit == "F" || unit == "fah") return (value + 459.67) * 5 / 9;
  if (unit == "Rank") return value * 5 / 9;
  return unit == "Reau" ? value * 1.25 + 273.15 : value;
}

double from_kelvin(double value, std::string_view unit) {
  if (unit == "C" || unit == "cel") return value - 273.15;
  if (unit == "F" || unit == "fah") return value * 9 / 5 - 459.67;
  if (unit == "Rank") return value * 9 / 5;
  return unit == "Reau" ? (value - 273.15) / 1.25 : value;
}

Operand fn_convert(Call& call) {
  const auto from = read(call.text(1));
  const auto to = read(call.text(2));
  if (!from || !to || from->unit->kind != to->unit->kind) return ErrorValue::na;
  const double value = call.number(0);
  if (call.text(1) == call.text(2)) return value;
  if (from->unit->kind == Kind::temperature)
    return from_kelvin(to_kelvin(value * from->factor, from->unit->name), to->unit->name) /
           to->factor;
  return value * (from->unit->size * from->factor) / (to->unit->size * to->factor);
}

// clang-format off
constexpr FunctionSpec unit_conversion_table[] = {
    {"CONVERT", 3, 3, plain, {strict_number, text, text}, fn_convert, "number, from, to",
     "a quantity in another unit", "=CONVERT(1,\"km\",\"m\")", "1000"},
};
// clang-format on
static_assert(well_formed(unit_conversion_table));

}  // namespace

std::span<const FunctionSpec> unit_conversion_functions() { return unit_conversion_table; }

}  // namespace qto::embedded::functions
