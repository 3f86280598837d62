#pragma once

#include <string_view>
#include <vector>

#include "qto/automation/variant.hpp"
#include "qto/hosts/embedded/objects/open_book.hpp"

/// Writing into cells. All of these throw HostFailure, and change nothing, for locked cells of a
/// protected sheet, for a part of an array formula, and for more cells than one edit may touch.
namespace qto::embedded {

/// One value for every cell, or an array's elements (#N/A beyond it); Empty and Null clear.
void write_value(OpenBook& book, Sheet& sheet, const std::vector<Rect>& blocks,
                 const Variant& value);
/// What was typed: a formula ("=" first) or a constant. Throws for a text that is no formula.
void write_typed(OpenBook& book, Sheet& sheet, const std::vector<Rect>& blocks,
                 std::string_view typed);
/// One array formula over the block.
void write_array_formula(OpenBook& book, Sheet& sheet, const Rect& block, std::string_view formula);
void write_number_format(OpenBook& book, Sheet& sheet, const std::vector<Rect>& blocks,
                         std::string_view code);

}  // namespace qto::embedded
