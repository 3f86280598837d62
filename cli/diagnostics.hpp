#pragma once

#include "cli/asking/arguments.hpp"
#include "cli/terminal/progress.hpp"

namespace qto::cli {

/// Traces the engine's calls while it lives, as --trace and --trace-viewer want it. Throws a
/// Complaint when an output cannot be opened.
class Tracing {
 public:
  explicit Tracing(const Arguments& arguments);
  Tracing(const Tracing&) = delete;
  Tracing& operator=(const Tracing&) = delete;
  ~Tracing();
};

/// Asks on the terminal what is to be done about each error report, while it lives and if the
/// arguments want that.
class AskAboutReports {
 public:
  AskAboutReports(const Arguments& arguments, Progress& progress);
  AskAboutReports(const AskAboutReports&) = delete;
  AskAboutReports& operator=(const AskAboutReports&) = delete;
  ~AskAboutReports();
};

}  // namespace qto::cli
