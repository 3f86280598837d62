#pragma once

#include <cstdint>

namespace qto {

/// Bytes that the process could still take; what counts is how it changes while a drill runs.
std::int64_t available_memory() noexcept;

/// A byte count as a Long, cut off at its limits.
std::int32_t saturated(std::int64_t bytes) noexcept;

}  // namespace qto
