#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/objects/application_object.hpp"

/// What worksheets and chart sheets have in common.
namespace qto::embedded {

/// True when the book shows some other sheet than this one.
bool another_is_visible(const Book& book, const Sheet& sheet);
/// Shows or hides a sheet; throws for the last visible one, a locked structure, an unknown number.
void put_visibility(OpenBook& book, Sheet& sheet, std::int32_t visibility);
/// Takes the protection away; throws for a wrong password.
void unprotect(Sheet& sheet, std::string_view password);
/// Makes the sheet and its book active; throws for a hidden sheet.
void activate_sheet(OpenBook& book, Sheet& sheet);
/// The same inside the active book only; throws when the book is not active.
void select_sheet(OpenBook& book, Sheet& sheet);
/// Whether the sheet is the one that the user sees.
bool is_active(const OpenBook& book, const Sheet& sheet);

/// Throws unless the text can be the name of a sheet of the book: 1 to 31 characters, none of
/// : \ / ? * [ ], no apostrophe at an end, and no other sheet's name. `self` is the sheet that is
/// renamed, null for a new one.
void check_sheet_name(const Book& book, std::string_view name, const Sheet* self);
/// Sheet and a number beyond the number of sheets, which no sheet has.
std::string free_sheet_name(const Book& book);

}  // namespace qto::embedded
