#pragma once

#include <string>

#include "qto/automation/address.hpp"
#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// The written area relative to the cell `base`; axes with a dollar stay places on the grid, as do
/// the ends of whole columns and rows.
AreaRef relative_area(const WrittenArea& area, CellPos base) noexcept;

/// Appends the area as A1 text as the cell `at` sees it, corners in order, with its dollars.
void append_area(std::string& out, const AreaRef& area, CellPos at);
/// The same in R1C1 notation.
void append_area_r1c1(std::string& out, const AreaRef& area, CellPos at);

}  // namespace qto::formula
