#pragma once

#include <cstdint>
#include <exception>

namespace qto::diagnostics {

/// The number under which an unexpected failure is reported: the failure's own where it carries
/// one (see NumberedFailure), 7 when memory ran out, 5 for anything else.
std::int32_t number_of(const std::exception& failure) noexcept;

}  // namespace qto::diagnostics
