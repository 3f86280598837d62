#pragma once

#include "qto/hosts/embedded/book/style_table.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// Replaces the styles of a book by the cell formats of its style part; the number that a cell
/// gives for its style is then the StyleId.
void read_styles(Package& package, const Package::Part& part, StyleTable& styles);

}  // namespace qto::embedded
