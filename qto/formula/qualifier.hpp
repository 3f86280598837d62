#pragma once

#include <string>
#include <string_view>

#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// Reads a qualifier token, "!" included: Sheet1!, 'A b:C'!, [1]Sheet1!, [0]!, '[Book 2.xlsx]A'!,
/// Book2.xlsx!, application|document!, #REF!.
SheetQualifier parse_qualifier(std::string_view token);

}  // namespace qto::formula
