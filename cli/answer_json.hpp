#pragma once

#include "cli/arguments.hpp"
#include "cli/drill.hpp"
#include "cli/progress.hpp"
#include "cli/reports.hpp"
#include "qto/host/workbook.hpp"

namespace qto::cli {

/// Each prints one JSON object on standard output.
void write_drill(const Arguments& arguments, Drill& drill, const Reports& reports,
                 Progress& progress);
void write_item(const Ref<ModelPart>& part, const Reports& reports);
void write_links(const Ref<host::Workbook>& book, const Reports& reports);

}  // namespace qto::cli
