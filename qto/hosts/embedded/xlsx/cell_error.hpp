#pragma once

#include <string_view>

#include "qto/automation/variant.hpp"

namespace qto::embedded {

/// The error value that a file writes as such a text; #VALUE! for kinds that came later.
ErrorValue error_from(std::string_view text) noexcept;

}  // namespace qto::embedded
