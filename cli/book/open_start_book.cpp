#include "cli/book/open_start_book.hpp"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <string_view>

#include "cli/asking/complaint.hpp"
#include "cli/links/linked_books.hpp"
#include "cli/terminal/prompt.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/libreoffice/application.hpp"

namespace qto::cli {
namespace {

/// Asks for the password of an encrypted book when none was given and somebody is there to answer.
Ref<host::Workbook> open_asking(const Ref<host::Application>& application,
                                const Arguments& arguments, Progress& progress) {
  const std::string name = text::from_path(text::to_path(arguments.book).filename());
  const auto open = [&](const std::string& password) {
    return application->Workbooks()->Open(arguments.book, false, true, password);
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

/// What stands at that path instead of a workbook, with what helps; "" when nothing is known.
std::string what_is_there(const std::string& book) {
  const std::filesystem::path path = text::to_path(book);
  std::error_code unknown;
  if (std::filesystem::is_directory(path, unknown))
    return "is a folder. Name one of its books, or list their links with 'qto links " + book + "'";
  const std::string name = text::from_path(path.filename());
  if (name.starts_with("~$"))
    return "is not a book but the lock file of one that is open elsewhere. Without '~$' it is the "
           "name of the book";
  constexpr std::string_view pointer = "version https://git-lfs.github.com/spec/";
  char head[pointer.size()] = {};
  std::ifstream(path, std::ios::binary).read(head, sizeof head);
  if (std::string_view(head, sizeof head) == pointer)
    return "is a pointer of Git LFS that stands in for the book. 'git lfs pull' fetches it";
  return "";
}

/// The application that the arguments choose.
Ref<host::Application> chosen_host(const embedded::Application& embedded,
                                   const Arguments& arguments) {
  if (arguments.host == HostChoice::embedded) return embedded;
  if (!arguments.folders.empty())
    throw Complaint(wrong_usage,
                    "--folder is not for --host libreoffice: linked books are looked "
                    "for at their place and beside the book");
  try {
    return libreoffice::application();
  } catch (const host::HostFailure& failure) {
    throw Complaint(unreadable, failure.what());
  }
}

/// What to do about a file that the embedded host does not read, "" when nothing is known.
std::string other_host(const Arguments& arguments, const host::OpenError& error) {
  using enum host::OpenFailureKind;
  if (arguments.host != HostChoice::embedded) return "";
  if (error.kind != not_a_package && error.kind != not_a_workbook) return "";
  for (const char* extension : {".ods", ".xls", ".xlsb", ".csv", ".fods", ".xlt", ".ots", ".dif",
                                ".slk", ".dbf", ".wk1", ".123", ".sxc"})
    if (text::equal_ascii_nocase(text::from_path(text::to_path(error.file).extension()), extension))
      return ". LibreOffice can open such files: --host libreoffice";
  return "";
}

Complaint unreadable_book(const host::OpenError& error, const Arguments& arguments) {
  const std::string other = what_is_there(arguments.book);
  Complaint complaint(unreadable,
                      other.empty() ? open_failure_text(error, true) + other_host(arguments, error)
                                    : arguments.book + " " + other);
  complaint.file = error.file;
  complaint.part = error.part;
  complaint.line = error.line;
  return complaint;
}

}  // namespace

Ref<host::Workbook> open_start_book(embedded::Application& application, const Arguments& arguments,
                                    Progress& progress) {
  try {
    auto book = open_asking(chosen_host(application, arguments), arguments, progress);
    // Only now: the folders are for linked books, this one must be where it is said to be.
    for (const std::string& folder : arguments.folders) application.add_search_folder(folder);
    return book;
  } catch (const host::OpenError& error) {
    throw unreadable_book(error, arguments);
  } catch (const host::HostFailure& failure) {
    Complaint complaint(unreadable, arguments.book + ": " + failure.what());
    complaint.file = arguments.book;
    throw complaint;
  }
}

}  // namespace qto::cli
