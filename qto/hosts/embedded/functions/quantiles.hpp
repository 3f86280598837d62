#pragma once

#include <span>

#include "qto/hosts/embedded/evaluate/operand.hpp"

/// Order statistics of sorted numbers.
namespace qto::embedded::functions {

/// The value below which the fraction `k` (0 to 1) of the numbers lies, ends included.
Operand percentile_inclusive(std::span<const double> sorted, double k);
/// The same with the ends left out: #NUM! outside of 1/(n+1) to n/(n+1).
Operand percentile_exclusive(std::span<const double> sorted, double k);
Operand median_of(std::span<const double> sorted);
/// The k-th largest or smallest, k from 1, its fraction cut off in the direction that favours more.
Operand kth(std::span<const double> sorted, double k, bool largest);

}  // namespace qto::embedded::functions
