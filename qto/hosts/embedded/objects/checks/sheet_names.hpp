#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// Throws unless the text can be the name of a sheet of the book: 1 to 31 characters, none of
/// : \ / ? * [ ], no apostrophe at an end, and no other sheet's name. `self` is the sheet that is
/// renamed, null for a new one.
void check_sheet_name(const Book& book, std::string_view name, const Sheet* self);
/// Sheet and a number beyond the number of sheets, which no sheet has.
std::string free_sheet_name(const Book& book);

}  // namespace qto::embedded
