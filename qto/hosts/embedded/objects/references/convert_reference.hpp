#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/address.hpp"

/// Changes how the references of a formula text are written. Texts may begin with "=" or not.
namespace qto::embedded {

/// R1C1 references become A1 as the cell `at` sees them. Nothing when one leads off the grid.
std::optional<std::string> a1_from_r1c1(std::string_view formula, CellPos at);
/// A1 references become R1C1. Nothing when the text is no formula.
std::optional<std::string> r1c1_from_a1(std::string_view formula, CellPos at);

/// Puts the sheet before every reference that names none, as the definition of a name wants it.
std::string qualify_references(std::string_view formula, std::string_view sheet_name);
/// Writes another sheet name wherever references into the own book name the old one.
std::string rename_qualifiers(std::string_view formula, std::string_view old_name,
                              std::string_view new_name);

}  // namespace qto::embedded
