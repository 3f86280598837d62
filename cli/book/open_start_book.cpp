#include "cli/book/open_start_book.hpp"

#include <fmt/format.h>

#include "cli/asking/complaint.hpp"
#include "cli/links/linked_books.hpp"
#include "cli/terminal/prompt.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/host/host.hpp"

namespace qto::cli {
namespace {

/// Asks for the password of an encrypted book when none was given and somebody is there to answer.
Ref<host::Workbook> open_asking(embedded::Application& application, const Arguments& arguments,
                                Progress& progress) {
  const std::string name = text::from_path(text::to_path(arguments.book).filename());
  const auto open = [&](const std::string& password) {
    return application.Workbooks()->Open(arguments.book, false, true, password);
  };
  try {
    return open(password_for(arguments, name));
  } catch (const host::OpenError& error) {
    if (error.kind != host::OpenFailureKind::encrypted || arguments.open != OpenPolicy::ask) throw;
    progress.hide();
    const std::string password = prompt_hidden(fmt::format("Password of {}: ", name));
    if (password.empty()) throw;
    return open(password);
  }
}

}  // namespace

Ref<host::Workbook> open_start_book(embedded::Application& application, const Arguments& arguments,
                                    Progress& progress) {
  try {
    auto book = open_asking(application, arguments, progress);
    // Only now: the folders are for linked books, this one must be where it is said to be.
    for (const std::string& folder : arguments.folders) application.add_search_folder(folder);
    return book;
  } catch (const host::OpenError& error) {
    Complaint complaint(unreadable, open_failure_text(error, true));
    complaint.file = error.file;
    complaint.part = error.part;
    complaint.line = error.line;
    throw complaint;
  } catch (const host::HostFailure& failure) {
    Complaint complaint(unreadable, arguments.book + ": " + failure.what());
    complaint.file = arguments.book;
    throw complaint;
  }
}

}  // namespace qto::cli
