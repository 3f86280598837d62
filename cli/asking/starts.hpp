#pragma once

#include <string>
#include <vector>

#include "cli/asking/arguments.hpp"

namespace qto::cli {

/// Every START as written: those of the command line, then the lines of the file that --starts
/// names. Throws Complaint when that cannot be read.
std::vector<std::string> written_starts(const Arguments& arguments);

}  // namespace qto::cli
