#pragma once

#include <string_view>

namespace qto::exact {

/// True for functions that run what stands in their arguments over all elements, also in a formula
/// that is no array formula.
bool runs_over_elements(std::string_view function) noexcept;

}  // namespace qto::exact
