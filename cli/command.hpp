#pragma once

#include "cli/asking/arguments.hpp"

namespace qto::cli {

/// Does what the arguments ask for, prints the answer or the complaint, and gives the exit status.
int run_command(const Arguments& arguments);

}  // namespace qto::cli
