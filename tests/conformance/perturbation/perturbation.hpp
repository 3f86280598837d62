#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "qto/host/workbook.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "qto/options/drill_options.hpp"

namespace qto::embedded::conformance {

/// How much is followed by a drill.
enum class Following : std::uint8_t {
  all,   ///< every reference, and what INDIRECT and OFFSET reach
  used,  ///< what was used, and what decided that
};
inline constexpr int followings = 2;

/// How formulas are chosen and how often each is tried.
struct PerturbationPlan {
  std::uint64_t seed = 1;
  /// Formulas tried among those that are copies of each other; 0: all.
  int per_pattern = 3;
  /// No further formula is drilled after so many seconds.
  double seconds = 60;
  /// How often all cells that were not followed are changed at once.
  int rounds = 8;
  /// Precedents of a formula of which it is asked whether a change can reach it.
  int reach_samples = 6;
  qtoReading reading = qtoReadExact;
  /// What is drilled with, other than what the ways of following stand for.
  Ref<DrillOptions> options[followings];
  /// Called with the part done, 0 to 1.
  void (*progress)(double fraction) = nullptr;
  /// Only this formula.
  std::optional<CellAddress> only;
};

/// A cell that feeds a value and was not followed.
struct Miss {
  Following following;
  std::string cell, formula, value;
  std::string followed;  ///< the first cells of what was
  std::string culprit, culprit_before, culprit_after;
  std::string value_after;
  std::string failure;  ///< what the drill reported
};

struct Reach {
  std::int64_t precedents = 0, unreachable = 0;
};

struct PerturbationResult {
  std::int64_t formulas = 0;  ///< formula cells of the book
  std::int64_t checked = 0;   ///< of them drilled and tried
  std::int64_t copies = 0;    ///< left out because copies of them were tried
  std::int64_t no_time = 0;   ///< left out when the time was over
  std::int64_t chance = 0;    ///< left out because they draw numbers
  std::int64_t data_tables = 0, unreadable = 0;
  std::int64_t key_values = 0;  ///< keys were made by functions: nothing of the call was changed
  std::int64_t intelligent = 0, whole = 0, refused = 0, reported = 0;
  std::int64_t misses[followings] = {};
  std::vector<Miss> shown;  ///< one for each group of copies
  /// By the innermost function around a reference, per way of following.
  std::map<std::string, Reach> reach[followings];
  double drill_seconds = 0, seconds = 0;

  void add(PerturbationResult&& other);
};

/// Tries the formulas of an open workbook: changes cells that a drill did not follow, calculates
/// that formula alone, and expects its value. The workbook is afterwards as it was.
PerturbationResult perturb(const Ref<host::Workbook>& workbook, const PerturbationPlan& plan);

}  // namespace qto::embedded::conformance
