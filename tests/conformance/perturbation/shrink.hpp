#pragma once

#include "tests/conformance/perturbation/generated_book.hpp"
#include "tests/conformance/perturbation/perturbation.hpp"

namespace qto::embedded::conformance {

/// The same miss with the simplest formula in its cell that still has one. The book is left with
/// the formula that it had.
Miss shrunk(GeneratedBook& book, const Miss& miss, const PerturbationPlan& plan);

}  // namespace qto::embedded::conformance
