#pragma once

#include <string_view>

#include "qto/hosts/embedded/evaluate/value_view.hpp"

namespace qto::embedded {

/// Order of two texts as spreadsheets sort them, letter case ignored: punctuation, digits, letters.
int compare_texts(std::string_view a, std::string_view b);
/// Order of two values that are no errors: numbers, then texts, then FALSE and TRUE. An empty value
/// counts as the zero, "" or FALSE of the other's type. Numbers are compared exactly.
int compare_values(const ValueView& a, const ValueView& b);
/// True when both are equal as compare_values() sees it, which is cheaper to find out.
bool equal_values(const ValueView& a, const ValueView& b);
/// True when the numbers differ by no more than the noise of binary fractions, as "=" sees them.
bool nearly_equal(double a, double b) noexcept;

}  // namespace qto::embedded
