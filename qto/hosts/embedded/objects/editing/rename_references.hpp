#pragma once

#include <string_view>

#include "qto/hosts/embedded/objects/open_book.hpp"

namespace qto::embedded {

/// Rewrites the formulas, names and charts of a book that refer to a sheet by its old name.
void rename_references(OpenBook& book, std::string_view old_name, std::string_view new_name);

}  // namespace qto::embedded
