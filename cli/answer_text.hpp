#pragma once

#include "cli/arguments.hpp"
#include "cli/drill.hpp"
#include "cli/progress.hpp"

namespace qto::cli {

/// Each prints for people on standard output.
void print_drill(const Arguments& arguments, Drill& drill, const OpenFailures& failures,
                 Progress& progress);
void print_item(const Ref<ModelPart>& part);

}  // namespace qto::cli
