#include "cli/links/folder_links.hpp"

#include <algorithm>

#include "cli/asking/complaint.hpp"
#include "cli/links/open_failures.hpp"
#include "cli/terminal/interrupt.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"

namespace qto::cli {
namespace {

namespace fs = std::filesystem;

bool is_workbook_file(const fs::directory_entry& entry) {
  std::error_code ignored;
  if (!entry.is_regular_file(ignored)) return false;
  const std::string name = text::from_path(entry.path().filename());
  // Applications lay such files beside a book that is open.
  if (name.starts_with("~$") || name.starts_with('.')) return false;
  const std::string ending = text::to_lower(text::from_path(entry.path().extension()));
  return ending == ".xlsx" || ending == ".xlsm" || ending == ".xltx" || ending == ".xltm";
}

std::vector<std::string> books_in(const std::string& folder) {
  std::error_code failure;
  const fs::path top = fs::absolute(text::to_path(folder)).lexically_normal();
  fs::recursive_directory_iterator at(top, fs::directory_options::skip_permission_denied, failure);
  std::vector<std::string> books;
  for (; !failure && at != fs::recursive_directory_iterator(); at.increment(failure))
    if (is_workbook_file(*at)) books.push_back(text::from_path(at->path()));
  if (failure) throw Complaint(unreadable, folder + ": " + failure.message());
  std::sort(books.begin(), books.end());
  return books;
}

FolderLinks::BookLinks links_of(const std::string& file, const Arguments& arguments) {
  FolderLinks::BookLinks book;
  const std::string name = text::from_path(text::to_path(file).filename());
  try {
    book.links =
        embedded::read_stored_links(file, arguments.folders, password_for(arguments, name));
  } catch (const host::OpenError& error) {
    book.problem = open_failure_text(error, false);
  }
  return book;
}

}  // namespace

FolderLinks read_folder_links(const Arguments& arguments, Progress& progress) {
  const Interrupt listening;
  FolderLinks found;
  found.folder = text::from_path(fs::absolute(text::to_path(arguments.book)).lexically_normal());
  progress.stage("reading the links of books");
  for (const std::string& file : books_in(arguments.book)) {
    if (Interrupt::raised()) throw Complaint(done_in_part, "interrupted");
    found.books.emplace(file, links_of(file, arguments));
    progress.count_one();
  }
  for (const auto& [file, book] : found.books)
    for (const embedded::StoredLink& link : book.links)
      if (const auto target = found.books.find(link.found_at); target != found.books.end())
        target->second.referred_to_by.push_back(file);
  return found;
}

}  // namespace qto::cli
