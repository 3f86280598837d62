#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/formula/compiled_formula.hpp"
#include "qto/hosts/embedded/formula/syntax_tree.hpp"

namespace qto::embedded {

/// Reads a qualifier token, "!" included: Sheet1!, 'A b:C'!, [1]Sheet1!, [0]!, '[Book 2.xlsx]A'!,
/// Book2.xlsx!, application|document!, #REF!.
SheetQualifier parse_qualifier(std::string_view token);

/// Appends a qualifier into a numbered link as people see it: by the book's name when the book is
/// open, with its folder when not; a link to a running application as application|document!. A
/// number that the book does not have is kept as a number.
void append_link_qualifier(std::string& out, const SheetQualifier& qualifier,
                           const RenderContext& context);

}  // namespace qto::embedded
