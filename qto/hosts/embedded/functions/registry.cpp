#include "qto/hosts/embedded/functions/registry.hpp"

#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

std::span<const Family> families() {
  static const Family all[] = {
      {"Logical", logical_functions()},
      {"Information", information_functions()},
      {"Sums and products", sum_functions()},
      {"Arithmetic", arithmetic_functions()},
      {"Rounding", rounding_functions()},
      {"Trigonometry", trigonometry_functions()},
      {"Combinatorics and number theory", combinatorics_functions()},
      {"Statistics", statistics_functions()},
      {"Ranks and quantiles", ranking_functions()},
      {"Regression", regression_functions()},
      {"Text", text_functions()},
      {"Searching in text", text_search_functions()},
      {"Text and numbers", text_conversion_functions()},
      {"Dates and times", date_functions()},
      {"Days between dates", date_span_functions()},
      {"Lookup", lookup_functions()},
      {"References", reference_functions()},
      {"Conditional sums and counts", conditional_functions()},
      {"Financial", financial_functions()},
      {"Subtotals", subtotal_functions()},
      {"Matrices", matrix_functions()},
      {"Fits", linear_fit_functions()},
      {"Databases", database_functions()},
      {"Arrays", array_functions()},
      {"Shapes of arrays", array_shape_functions()},
      {"Number bases and bits", number_base_functions()},
      {"Distributions", distribution_functions()},
      {"Tests of samples", sample_test_functions()},
      {"Complex numbers", complex_functions()},
      {"Parts of text", text_part_functions()},
      {"Patterns", text_pattern_functions()},
      {"Depreciation", depreciation_functions()},
      {"Function values", function_value_functions()},
      {"Securities", security_functions()},
      {"Odd coupon periods", odd_period_functions()},
      {"Bessel functions", bessel_functions()},
      {"Units", unit_conversion_functions()},
      {"Cells", cell_info_functions()},
  };
  return all;
}

const FunctionTable& registry() {
  static const FunctionTable table([] {
    std::vector<std::span<const FunctionSpec>> rows;
    for (const Family& family : families()) rows.push_back(family.rows);
    return FunctionTable(rows);
  }());
  return table;
}

}  // namespace qto::embedded::functions
