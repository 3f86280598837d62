#include "qto/model/series_formula.hpp"

#include "qto/diagnostics/procedure.hpp"
#include "qto/host/constants.hpp"

namespace qto {

std::string series_values_formula(const host::Series& series) {
  Procedure proc("ModelPart", "series_values_formula");
  const std::int32_t chart_type = series.ChartType();
  if (chart_type >= host::first_surface_chart && chart_type <= host::last_surface_chart) return "";
  const std::string formula = series.Formula();
  std::size_t found[5];
  std::size_t from = 0;
  constexpr char marks[] = {'(', ',', ',', ',', ')'};
  for (int i = 0; i < 5; ++i) {
    found[i] = formula.find(marks[i], from);
    if (found[i] == std::string::npos) return "";
    from = found[i] + 1;
  }
  const std::size_t start = found[2] + 1;
  return found[3] <= start ? "" : "=" + formula.substr(start, found[3] - start);
}

}  // namespace qto
