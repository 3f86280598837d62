#include "qto/parser/exact/functions.hpp"

#include <algorithm>

namespace qto::exact {
namespace {

constexpr std::string_view over_elements[] = {
    "AGGREGATE",  "BYCOL",    "BYROW",     "CHISQ.TEST", "CHITEST",      "CHOOSECOLS",
    "CHOOSEROWS", "COLUMNS",  "CORREL",    "COVAR",      "COVARIANCE.P", "COVARIANCE.S",
    "DROP",       "EXPAND",   "F.TEST",    "FILTER",     "FORECAST",     "FORECAST.LINEAR",
    "FREQUENCY",  "FTEST",    "GROUPBY",   "GROWTH",     "HSTACK",       "INDEX",
    "INTERCEPT",  "LINEST",   "LOGEST",    "LOOKUP",     "MAKEARRAY",    "MAP",
    "MDETERM",    "MINVERSE", "MMULT",     "MODE.MULT",  "PEARSON",      "PERCENTOF",
    "PIVOTBY",    "PROB",     "REDUCE",    "ROWS",       "RSQ",          "SCAN",
    "SLOPE",      "SORT",     "SORTBY",    "STEYX",      "SUMPRODUCT",   "SUMX2MY2",
    "SUMX2PY2",   "SUMXMY2",  "T.TEST",    "TAKE",       "TOCOL",        "TOROW",
    "TRANSPOSE",  "TREND",    "TRIMRANGE", "TTEST",      "UNIQUE",       "VSTACK",
    "WRAPCOLS",   "WRAPROWS", "XLOOKUP",   "XMATCH",
};
static_assert(std::ranges::is_sorted(over_elements));

constexpr std::string_view elsewhere[] = {
    "CALL",    "CUBEKPIMEMBER", "CUBEMEMBER",   "CUBEMEMBERPROPERTY", "CUBERANKEDMEMBER",
    "CUBESET", "CUBESETCOUNT",  "CUBEVALUE",    "GETPIVOTDATA",       "REGISTER.ID",
    "RTD",     "SQL.REQUEST",   "STOCKHISTORY", "WEBSERVICE",
};
static_assert(std::ranges::is_sorted(elsewhere));

}  // namespace

bool runs_over_elements(std::string_view function) noexcept {
  return std::ranges::binary_search(over_elements, function);
}

bool reads_elsewhere(std::string_view function) noexcept {
  return std::ranges::binary_search(elsewhere, function);
}

/// A call of a function that is there fails otherwise than by its name.
bool KnownFunctions::knows(const std::string& function, const Evaluation& evaluation) {
  const auto [entry, added] = known_.try_emplace(function, true);
  if (!added) return entry->second;
  const auto value = evaluation.value(function + "()");
  const auto* error = value ? value->get_if<ErrorValue>() : nullptr;
  entry->second = !error || *error != ErrorValue::name;
  return entry->second;
}

}  // namespace qto::exact
