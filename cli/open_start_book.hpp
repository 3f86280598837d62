#pragma once

#include "cli/arguments.hpp"
#include "cli/progress.hpp"
#include "qto/host/workbook.hpp"
#include "qto/hosts/embedded/objects/application.hpp"

namespace qto::cli {

/// Opens the book that the arguments name and lets the application know the folders to search.
/// Throws Complaint.
Ref<host::Workbook> open_start_book(embedded::Application& application, const Arguments& arguments,
                                    Progress& progress);

}  // namespace qto::cli
