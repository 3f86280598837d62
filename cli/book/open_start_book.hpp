#pragma once

#include "cli/asking/arguments.hpp"
#include "cli/terminal/progress.hpp"
#include "qto/host/workbook.hpp"
#include "qto/hosts/embedded/application.hpp"

namespace qto::cli {

/// Opens the book that the arguments name and lets the application know the folders to search.
/// Throws Complaint.
Ref<host::Workbook> open_start_book(embedded::Application& application, const Arguments& arguments,
                                    Progress& progress);

}  // namespace qto::cli
