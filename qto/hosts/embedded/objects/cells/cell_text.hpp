#pragma once

#include <string>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// What a cell shows: its value in its number format, as wide as its column or merged block.
std::string shown_text(const Book& book, const Sheet& sheet, CellPos pos);

}  // namespace qto::embedded
