#pragma once

#include <string>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

namespace qto::embedded {

/// The book that a link, counted from 1, leads to when it is open, or null.
const Book* find_open_link(const RenderContext& context, std::uint32_t number);

/// Appends a qualifier into a numbered link as people see it: by the book's name when the book is
/// open, with its folder when not; a link to a running application as application|document!. A
/// number that the book does not have is kept as a number.
void append_link_qualifier(std::string& out, const formula::SheetQualifier& qualifier,
                           const RenderContext& context);

}  // namespace qto::embedded
