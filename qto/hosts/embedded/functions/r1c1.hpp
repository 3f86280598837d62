#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/address.hpp"

namespace qto::embedded::functions {

/// A reference written as R1C1 in A1 notation, sheet and book before it kept; relative parts count
/// from `base`. Nothing for a text that is no such reference.
std::optional<std::string> a1_of_r1c1(std::string_view text, CellPos base);

}  // namespace qto::embedded::functions
