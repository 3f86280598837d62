#pragma once

#include <span>

#include "qto/hosts/embedded/evaluate/function_spec.hpp"

/// The tables, one per family; registry.cpp joins them.
namespace qto::embedded::functions {

std::span<const FunctionSpec> logical_functions();
std::span<const FunctionSpec> information_functions();
std::span<const FunctionSpec> sum_functions();
std::span<const FunctionSpec> arithmetic_functions();
std::span<const FunctionSpec> rounding_functions();
std::span<const FunctionSpec> trigonometry_functions();
std::span<const FunctionSpec> combinatorics_functions();
std::span<const FunctionSpec> statistics_functions();
std::span<const FunctionSpec> ranking_functions();
std::span<const FunctionSpec> regression_functions();
std::span<const FunctionSpec> text_functions();
std::span<const FunctionSpec> text_search_functions();
std::span<const FunctionSpec> text_conversion_functions();
std::span<const FunctionSpec> date_functions();
std::span<const FunctionSpec> date_span_functions();
std::span<const FunctionSpec> lookup_functions();
std::span<const FunctionSpec> reference_functions();
std::span<const FunctionSpec> conditional_functions();
std::span<const FunctionSpec> financial_functions();
std::span<const FunctionSpec> subtotal_functions();
std::span<const FunctionSpec> matrix_functions();
std::span<const FunctionSpec> linear_fit_functions();
std::span<const FunctionSpec> database_functions();
std::span<const FunctionSpec> array_functions();
std::span<const FunctionSpec> array_shape_functions();
std::span<const FunctionSpec> number_base_functions();
std::span<const FunctionSpec> distribution_functions();
std::span<const FunctionSpec> sample_test_functions();
std::span<const FunctionSpec> complex_functions();
std::span<const FunctionSpec> text_part_functions();
std::span<const FunctionSpec> text_pattern_functions();
std::span<const FunctionSpec> depreciation_functions();
std::span<const FunctionSpec> function_value_functions();
std::span<const FunctionSpec> security_functions();
std::span<const FunctionSpec> odd_period_functions();
std::span<const FunctionSpec> bessel_functions();
std::span<const FunctionSpec> unit_conversion_functions();
std::span<const FunctionSpec> cell_info_functions();

}  // namespace qto::embedded::functions
