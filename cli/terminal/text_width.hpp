#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qto::cli {

/// Columns that a UTF-8 text takes in a terminal: marks that combine take none, wide letters two.
std::size_t text_width(std::string_view text) noexcept;
/// The text, or as much of its front as leaves room for an ellipsis in `width` columns.
std::string clipped(std::string_view text, std::size_t width);

}  // namespace qto::cli
