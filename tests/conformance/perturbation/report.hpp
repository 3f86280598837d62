#pragma once

#include <ostream>
#include <string_view>

#include "tests/conformance/perturbation/perturbation.hpp"

namespace qto::embedded::conformance {

void print(std::ostream& out, const Miss& miss);
/// What one book came to, in a line.
void print_line(std::ostream& out, std::string_view book, const PerturbationResult& result);
/// What all of them came to.
void print_totals(std::ostream& out, const PerturbationResult& total);

}  // namespace qto::embedded::conformance
