#pragma once

#include <string>

#include "qto/automation/address.hpp"
#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// Appends a part of a formula as the cell `at` writes it: a text that parses to the same tree.
/// Recursion follows the nesting of the text that the tree was parsed from.
void append_node(std::string& out, const SyntaxTree& tree, NodeIndex index, CellPos at);
/// The same of one qualifier, "!" included; "" when there is none.
void append_qualifier(std::string& out, const SheetQualifier& qualifier);

}  // namespace qto::formula
