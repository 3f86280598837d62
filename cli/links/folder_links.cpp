#include "cli/links/folder_links.hpp"

#include <algorithm>
#include <string_view>

#include "cli/asking/complaint.hpp"
#include "cli/terminal/interrupt.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/locate_file.hpp"
#include "qto/hosts/embedded/objects/resolve_links.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

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

FolderLinks::Link link_of(const embedded::Book& book, std::size_t number,
                          const embedded::StoredNames& stored) {
  const embedded::ExternalBook& external = book.externals[number];
  FolderLinks::Link link;
  link.workbook = external.kind == embedded::ExternalBook::Kind::workbook;
  if (!link.workbook) {
    link.source = external.application + "|" + external.document;
    return link;
  }
  link.source = embedded::stored_name(book, number, stored);
  link.internet = embedded::is_internet_address(link.source);
  const std::string place = external.folder + external.name;
  if (!link.internet && embedded::is_file_here(place))
    link.found_at = text::from_path(text::to_path(embedded::native_path(place)).lexically_normal());
  return link;
}

FolderLinks::BookLinks links_of(const std::string& file, const Arguments& arguments) {
  FolderLinks::BookLinks links;
  const std::string password =
      password_for(arguments, text::from_path(text::to_path(file).filename()));
  const auto read = [&](const std::string& key) {
    embedded::OpenOptions options;
    options.links_only = true;
    options.password = key;
    return embedded::open_workbook(file, options);
  };
  try {
    const auto book = read(password);
    embedded::StoredNames stored;
    embedded::resolve_links(*book, arguments.folders, stored);
    for (std::size_t i = 0; i < book->externals.size(); ++i) {
      const embedded::ExternalBook& external = book->externals[i];
      const bool known = external.kind == embedded::ExternalBook::Kind::workbook
                             ? !external.name.empty()
                             : !external.application.empty();
      if (known) links.links.push_back(link_of(*book, i, stored));
    }
  } catch (const embedded::OpenFailure& failure) {
    links.problem = failure.message().substr(file.size() + 2);
  }
  return links;
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
    for (const FolderLinks::Link& link : book.links)
      if (const auto target = found.books.find(link.found_at); target != found.books.end())
        target->second.referred_to_by.push_back(file);
  return found;
}

}  // namespace qto::cli
