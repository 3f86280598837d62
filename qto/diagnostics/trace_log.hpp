#pragma once

#include <string>

#include "qto/diagnostics/trace.hpp"

namespace qto::diagnostics {

/// The line that an entry makes: a tab for every open call above it and the qualified name.
std::string trace_line(const QualifiedName& name, int depth);

/// A sink for set_trace_sink that writes a line for every entry into a file. The file is opened at
/// the first one (an existing file is replaced) and headed by the title and the time; it stays open
/// as long as the sink is set. A file that cannot be written gives no log and no failure.
TraceSink trace_log(std::string file_name, std::string application_title);

}  // namespace qto::diagnostics
