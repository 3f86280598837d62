#pragma once

#include <string>
#include <vector>

#include "cli/links/linked_books.hpp"
#include "qto/hosts/embedded/application.hpp"

namespace qto::cli {

/// One source that a book links to, and what became of it.
struct LinkState {
  std::string source;    ///< full name as the book stores it, or application|document
  bool workbook = true;  ///< false for a link to another application
  std::string found_at;  ///< "" when no file is there
  qtoReasonNotOpened reason = qtoWNOOK;  ///< of workbooks
  std::string words;                     ///< why not opened; "" when it was
};

/// Looks for every source of the book and opens it as the user decides, to tell whether it can be
/// read; what was opened is closed again.
std::vector<LinkState> link_states(embedded::Application& application,
                                   const Ref<host::Workbook>& book, const Arguments& arguments,
                                   Progress& progress, const OpenFailures& failures);

void print_links(const host::Workbook& book, const std::vector<LinkState>& links);
void write_links(JsonWriter& json, const std::vector<LinkState>& links);

}  // namespace qto::cli
