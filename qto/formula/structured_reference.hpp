#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/formula/syntax_tree.hpp"

namespace qto::formula {

/// Reads a structured reference: Sales[Amount], Sales[[#Headers],[A]:[B]], [@Price], Sales[].
/// Nothing when the brackets do not hold one.
std::optional<StructuredRef> parse_structured(std::string_view token);

}  // namespace qto::formula
