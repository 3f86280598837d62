#pragma once

#include <string>

#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// The tree as one line, references as the cell `at` sees them: (+ A1 (SUM B1:B2)). For tests and
/// for people who look for faults.
std::string dump_tree(const SyntaxTree& tree, CellPos at);

}  // namespace qto::formula
