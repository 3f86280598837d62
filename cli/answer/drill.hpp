#pragma once

#include <chrono>
#include <string>

#include "cli/asking/arguments.hpp"
#include "cli/links/linked_books.hpp"
#include "cli/terminal/progress.hpp"
#include "qto/engine/drill_down.hpp"

namespace qto::cli {

/// One run of the engine as the arguments want it, with progress and Ctrl-C.
class Drill {
 public:
  Drill(const Arguments& arguments, Progress& progress);
  Drill(const Drill&) = delete;
  Drill& operator=(const Drill&) = delete;

  /// Throws AutomationError where the engine refuses.
  void run(const Ref<Object>& start);
  DrillDown& engine() noexcept { return *engine_; }
  /// What ended the run before its time, "" for nothing: what was found until then is there.
  const std::string& ended_by() const noexcept { return ended_by_; }

 private:
  void subscribe();
  void look_for_an_end();

  const Arguments& arguments_;
  Progress& progress_;
  LinkedBookChoices choices_;
  Ref<DrillDown> engine_ = make_ref<DrillDown>();
  std::string ended_by_;
  std::chrono::steady_clock::time_point started_;
};

/// Finds out what parsing its formula tells about a single part (constants, special functions)
/// without following it.
void parse_only(const Ref<ModelPart>& part);

}  // namespace qto::cli
