#pragma once

#include "cli/asking/arguments.hpp"

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

}  // namespace qto::cli
