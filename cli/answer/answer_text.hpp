#pragma once

#include "cli/answer/drill.hpp"
#include "cli/asking/arguments.hpp"
#include "cli/terminal/progress.hpp"

namespace qto::cli {

/// Each prints for people on standard output.
void print_drill(const Arguments& arguments, Drill& drill, const OpenFailures& failures,
                 Progress& progress);
void print_item(const Ref<ModelPart>& part);

}  // namespace qto::cli
