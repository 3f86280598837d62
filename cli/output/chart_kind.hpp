#pragma once

#include <cstdint>
#include <string_view>

namespace qto::cli {

/// What people call a chart type by its number: "stacked column", "XY scatter", "surface".
std::string_view chart_kind(std::int32_t chart_type) noexcept;

}  // namespace qto::cli
