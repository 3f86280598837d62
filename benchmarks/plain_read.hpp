#pragma once

#include <cstdint>
#include <string>

namespace qto::benchmarks {

struct PlainTotals {
  std::int64_t parts = 0;
  std::int64_t bytes = 0;
  double seconds = 0;
  std::string failure;  ///< empty when every part was read
};

/// The yardstick of the benchmarks: inflates every XML part of a package and tokenizes it, keeping
/// nothing. No reader of workbooks that sees all of a file can be faster on one core.
PlainTotals plain_pass(const std::string& path);

}  // namespace qto::benchmarks
