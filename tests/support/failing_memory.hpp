#pragma once

#include <cstdint>

namespace qto::test {

/// While it lives the n-th allocation of this thread (from 1) and all after it fail.
class FailingMemory {
 public:
  explicit FailingMemory(std::int64_t n) noexcept;
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
  /// True once one failed.
  static bool failed() noexcept;
};

}  // namespace qto::test
