#include "cli/open_start_book.hpp"

#include <filesystem>

#include "cli/complaint.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/objects/open_error.hpp"

namespace qto::cli {
namespace {

std::string remedy_for(const embedded::OpenError& error, bool password_given) {
  using Kind = embedded::OpenFailureKind;
  if (error.kind == Kind::encrypted)
    return password_given ? "" : ". Give its password with --password TEXT";
  return "";
}

}  // namespace

Ref<host::Workbook> open_start_book(embedded::Application& application,
                                    const Arguments& arguments) {
  const std::string name = std::filesystem::path(arguments.book).filename().string();
  const std::string password = password_for(arguments, name);
  try {
    auto book = application.Workbooks()->Open(arguments.book, false, true, password);
    // Only now: the folders are for linked books, this one must be where it is said to be.
    for (const std::string& folder : arguments.folders) application.add_search_folder(folder);
    return book;
  } catch (const embedded::OpenError& error) {
    Complaint complaint(unreadable, error.what() + remedy_for(error, !password.empty()));
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
