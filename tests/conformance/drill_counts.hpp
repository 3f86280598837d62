#pragma once

#include <string>
#include <vector>

namespace qto::embedded::conformance {

/// Parses every formula of workbooks that calls one of the functions drilled intelligently, with
/// the options that follow least, and prints how the drilling of each call ended. `list`: also
/// every formula that was not decided.
void count_drills(const std::vector<std::string>& files, bool list);

}  // namespace qto::embedded::conformance
