#pragma once

#include "cli/arguments.hpp"
#include "cli/drill.hpp"
#include "cli/progress.hpp"
#include "qto/host/workbook.hpp"

namespace qto::cli {

/// Each prints for people on standard output.
void print_drill(const Arguments& arguments, Drill& drill, Progress& progress);
void print_item(const Ref<ModelPart>& part);
void print_links(const Ref<host::Workbook>& book);

}  // namespace qto::cli
