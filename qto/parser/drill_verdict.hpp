#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "qto/parser/token.hpp"

namespace qto {

/// How the drilling of one special function ended.
enum class DrillVerdict : std::uint8_t {
  decided,          ///< the branch, the cell or the target was found and followed
  not_found,        ///< a lookup found nothing: nothing feeds the result
  both_branches,    ///< the condition of an IF is an array that chooses both: all of it is followed
  condition_error,  ///< the condition of an IF is an error value: all of it is followed
  no_reference,     ///< INDEX, OFFSET or INDIRECT gives no reference: the part has an error
  no_table,         ///< what is searched is no reference: counted as a constant
  failed,           ///< the driller failed: all references of the call are followed
};
inline constexpr std::size_t drill_verdict_count = 7;

/// Counts of verdicts by function.
class DrillVerdicts {
 public:
  void add(TokenType function, DrillVerdict verdict) noexcept {
    ++counts_[index(function)][static_cast<std::size_t>(verdict)];
  }
  std::int64_t count(TokenType function, DrillVerdict verdict) const noexcept {
    return counts_[index(function)][static_cast<std::size_t>(verdict)];
  }
  /// Formulas that were not drilled intelligently at all, because one of their references could
  /// not be resolved.
  std::int64_t unresolved_formulas() const noexcept { return unresolved_; }
  void add_unresolved_formula() noexcept { ++unresolved_; }

 private:
  static std::size_t index(TokenType type) noexcept { return static_cast<std::size_t>(type); }
  std::array<std::array<std::int64_t, drill_verdict_count>,
             static_cast<std::size_t>(TokenType::own_text) + 1>
      counts_{};
  std::int64_t unresolved_ = 0;
};

}  // namespace qto
