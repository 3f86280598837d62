#pragma once

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// The value of a single cell, the values of a block as an array. Throws HostFailure for a block
/// too large to hold.
Variant values_of_block(const Book& book, const Sheet& sheet, const Rect& block);

}  // namespace qto::embedded
