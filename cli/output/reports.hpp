#pragma once

#include <cstddef>
#include <vector>

#include "qto/diagnostics/error_report.hpp"

namespace qto::cli {

/// Collects the error reports that arise while it lives. The library's own way of going on (leave
/// the procedure) stays.
class Reports {
 public:
  Reports();
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;
  ~Reports();

  /// How many arose; of very many only the first are kept.
  std::size_t count() const noexcept { return count_; }
  const std::vector<diagnostics::ErrorReport>& kept() const noexcept { return kept_; }
  /// Tells people on standard error, when any arose.
  void print() const;

 private:
  int token_;
  std::size_t count_ = 0;
  std::vector<diagnostics::ErrorReport> kept_;
};

}  // namespace qto::cli
