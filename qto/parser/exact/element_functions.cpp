#include "qto/parser/exact/element_functions.hpp"

#include <algorithm>

namespace qto::exact {
namespace {

constexpr std::string_view functions[] = {
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
static_assert(std::ranges::is_sorted(functions));

}  // namespace

bool runs_over_elements(std::string_view function) noexcept {
  return std::ranges::binary_search(functions, function);
}

}  // namespace qto::exact
