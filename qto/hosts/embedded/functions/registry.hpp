#pragma once

#include <span>

#include "qto/hosts/embedded/evaluate/function_spec.hpp"

/// The functions of formulas, one table per family.
namespace qto::embedded::functions {

/// A family with the title it has in the documentation.
struct Family {
  std::string_view title;
  std::span<const FunctionSpec> rows;
};

/// All families, in the order of the documentation.
std::span<const Family> families();
/// All functions by name; made once.
const FunctionTable& registry();

}  // namespace qto::embedded::functions
