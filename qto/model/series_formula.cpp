#include "qto/model/series_formula.hpp"

#include "qto/diagnostics/procedure.hpp"
#include "qto/host/constants.hpp"

namespace qto {
namespace {

constexpr std::size_t values_argument = 2;

/// The place of the quote that ends what the one at `open` begins; quotes inside are doubled.
std::size_t closing_quote(std::string_view text, std::size_t open) {
  for (std::size_t at = text.find(text[open], open + 1); at != std::string_view::npos;
       at = text.find(text[open], at + 1)) {
    if (at + 1 == text.size() || text[at + 1] != text[open]) return at;
    ++at;
  }
  return std::string_view::npos;
}

}  // namespace

std::vector<std::string_view> series_arguments(std::string_view formula) {
  const std::size_t open = formula.find('(');
  if (open == std::string_view::npos) return {};
  std::vector<std::string_view> arguments;
  std::size_t from = open + 1;
  int depth = 1;
  for (std::size_t at = from; at < formula.size(); ++at) {
    const char c = formula[at];
    if (c == '\'' || c == '"') {
      at = closing_quote(formula, at);
      if (at == std::string_view::npos) return {};
    } else if (c == '(' || c == '{') {
      ++depth;
    } else if (c == ')' || c == '}') {
      if (--depth > 0) continue;
      arguments.push_back(formula.substr(from, at - from));
      return arguments;
    } else if (c == ',' && depth == 1) {
      arguments.push_back(formula.substr(from, at - from));
      from = at + 1;
    }
  }
  return {};
}

std::string series_values_formula(const host::Series& series) {
  Procedure proc("ModelPart", "series_values_formula");
  const std::int32_t chart_type = series.ChartType();
  if (chart_type >= host::first_surface_chart && chart_type <= host::last_surface_chart) return "";
  const std::string formula = series.Formula();
  const auto arguments = series_arguments(formula);
  // The order of the series stands behind the values.
  if (arguments.size() <= values_argument + 1 || arguments[values_argument].empty()) return "";
  return "=" + std::string(arguments[values_argument]);
}

}  // namespace qto
