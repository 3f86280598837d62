#pragma once

#include <string_view>

#include "qto/com/com.hpp"

/// Memory that changes hands at the boundary: the system's own on Windows, so that any client can
/// free it. All throw std::bad_alloc.
namespace qto::com {

/// A counted text, followed by a zero that is not counted.
Text allocate_text(std::u16string_view text);
/// The characters of a text; of null, none.
std::size_t text_length(const char16_t* text) noexcept;
void free_text(Text text) noexcept;

/// An array of empty variants, both dimensions counted from 1; a column's elements follow each
/// other.
Array* allocate_array(std::uint32_t rows, std::uint32_t columns);
/// An array of one dimension, counted from 1.
Array* allocate_list(std::uint32_t count);
/// Releases what the variant owns and makes it empty. By-reference variants own nothing.
void clear(ComVariant& variant) noexcept;

}  // namespace qto::com
