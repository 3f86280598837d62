#pragma once

#include <string>
#include <string_view>

#include "qto/automation/address.hpp"
#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// Parentheses and calls may stand in each other this deep.
inline constexpr int max_nesting = 256;

struct ParsedFormula {
  SyntaxTree tree;         ///< root is no_node when the text is no formula
  std::string why_broken;  ///< what is wrong and where, then
};

/// Parses a formula text without "="; references are taken relative to `base`. Never throws for any
/// text, needs stack for `max_nesting` levels only.
ParsedFormula parse_formula(std::string_view text, CellPos base);

}  // namespace qto::formula
