#pragma once

#include <string>

namespace qto::cli {

/// "qto 11.0.1 (commit 0123456789ab)" and, on a line of its own, the libraries that it was built
/// with.
std::string version_text();

}  // namespace qto::cli
