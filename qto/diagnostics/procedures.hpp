#pragma once

#include <span>

#include "qto/diagnostics/trace.hpp"

namespace qto::diagnostics {

/// The qualified name of every procedure of the engine: what a trace can hold and an error report
/// can name. Tests hold it against the sources and against what really registers.
std::span<const QualifiedName> procedures() noexcept;

}  // namespace qto::diagnostics
