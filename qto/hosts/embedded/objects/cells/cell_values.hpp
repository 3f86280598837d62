#pragma once

#include <string>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// What a cell shows: its value in its number format, as wide as its column or merged block.
std::string shown_text(const Book& book, const Sheet& sheet, CellPos pos);

/// The value of a single cell, the values of a block as an array. Throws HostFailure for a block
/// too large to hold.
Variant values_of_block(const Book& book, const Sheet& sheet, const Rect& block);

}  // namespace qto::embedded
