#pragma once

#include <memory>
#include <string>

#include "qto/diagnostics/trace_outputs.hpp"

namespace qto::diagnostics {

/// A viewer that is another program: every line goes out as the marker (1 entering, 2 leaving), a
/// space, the text and a line feed, as soon as it arises. `target` is "fd:N" for an open file
/// descriptor (it stays open), or the path of a local socket on which the viewer listens (on
/// Windows the name of its pipe, \\.\pipe\NAME). Throws NumberedFailure when it cannot be reached;
/// so does send() once the viewer is gone. A viewer that does not read holds the engine up.
std::shared_ptr<TraceViewer> open_stream_viewer(const std::string& target);

}  // namespace qto::diagnostics
