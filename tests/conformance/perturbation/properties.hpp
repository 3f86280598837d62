#pragma once

#include <string>
#include <vector>

#include "tests/conformance/perturbation/generated_book.hpp"

namespace qto::embedded::conformance {

/// What should hold of the drills from every formula of a book and does not: the walk goes as a
/// recursive one over drills of one level does, the inputs are the leaves of the tree, and a second
/// drill gives the same.
std::vector<std::string> broken_properties(const GeneratedBook& book);

}  // namespace qto::embedded::conformance
