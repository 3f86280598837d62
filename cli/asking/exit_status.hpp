#pragma once

namespace qto::cli {

/// What the command ends with; docs/command.md tells the same to its users.
enum ExitStatus : int {
  done = 0,
  wrong_usage = 1,
  refused = 2,
  done_in_part = 3,  ///< an answer, but problems arose or the drill was interrupted
  unreadable = 4,
};

}  // namespace qto::cli
