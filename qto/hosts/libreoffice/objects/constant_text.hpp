#pragma once

#include <string>

#include "qto/automation/variant.hpp"
#include "qto/hosts/libreoffice/document/sheet_slot.hpp"

namespace qto::libreoffice {

/// Appends a constant as Formula shows it: numbers in general form, dates by their number.
void append_constant(std::string& out, const Variant& value, double date_origin);
/// The shortest general form of a number that reads as the same 15 digits.
std::string number_text(double number);
/// Throws where the cell's formula is hidden and its sheet protected.
void check_formula_shown(const SheetSlot& slot, CellPos pos);

}  // namespace qto::libreoffice
