#include "cli/links/folder_links.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "cli/asking/complaint.hpp"
#include "cli/links/linked_books.hpp"
#include "cli/output/part_text.hpp"
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

namespace {

using Kind = embedded::StoredLink::Kind;

/// Books of the folder by their place in it, others by their full name.
std::string shown(const FolderLinks& found, const std::string& file) {
  const auto inside = text::to_path(file).lexically_relative(text::to_path(found.folder));
  const bool within = !inside.empty() && *inside.begin() != "..";
  return one_line(within ? text::from_path(inside) : file);
}

std::string link_text(const FolderLinks& found, const embedded::StoredLink& link) {
  if (link.kind == Kind::application) return one_line(link.source) + "  (another application)";
  if (link.kind == Kind::internet)
    return one_line(link.source) + "  (internet address, not contacted)";
  if (link.found_at.empty()) return one_line(link.source) + "  (not found)";
  return shown(found, link.found_at);
}

std::string heading(const FolderLinks& found, const std::string& file,
                    const FolderLinks::BookLinks& book) {
  std::string text = shown(found, file);
  if (!book.problem.empty()) text += "  cannot be read: " + one_line(book.problem);
  if (book.referred_to_by.empty()) return text;
  text += "  (referred to by";
  for (std::size_t i = 0; i < book.referred_to_by.size(); ++i)
    text += (i > 0 ? ", " : " ") + shown(found, book.referred_to_by[i]);
  return text + ")";
}

struct Counts {
  std::size_t links = 0;
  std::size_t missing = 0;
  std::size_t unreadable = 0;
};

Counts count(const FolderLinks& found) {
  Counts counts;
  for (const auto& [file, book] : found.books) {
    counts.links += book.links.size();
    counts.unreadable += !book.problem.empty();
    for (const embedded::StoredLink& link : book.links)
      counts.missing += link.kind == Kind::workbook && link.found_at.empty();
  }
  return counts;
}

}  // namespace

void print_folder_links(const FolderLinks& found) {
  for (const auto& [file, book] : found.books) {
    fmt::print("{}\n", heading(found, file, book));
    for (const embedded::StoredLink& link : book.links)
      fmt::print("    → {}\n", link_text(found, link));
  }
  const Counts counts = count(found);
  fmt::print("{}{} book{}, {} link{}", found.books.empty() ? "" : "\n", found.books.size(),
             found.books.size() == 1 ? "" : "s", counts.links, counts.links == 1 ? "" : "s");
  if (counts.missing > 0) fmt::print(", {} not found", counts.missing);
  if (counts.unreadable > 0) fmt::print(", {} unreadable", counts.unreadable);
  fmt::print("\n");
}

void write_folder_links(const FolderLinks& found) {
  JsonWriter json(stdout);
  json.begin_object();
  json.member("operation", "links");
  json.member("Folder", found.folder);
  json.key("Books");
  json.begin_array();
  for (const auto& [file, book] : found.books) {
    json.begin_object();
    json.member("FullName", file);
    json.key("Links");
    json.begin_array();
    for (const embedded::StoredLink& link : book.links) {
      json.begin_object();
      json.member("FullNameWithPath", link.source);
      const bool workbook = link.kind != Kind::application;
      json.member("Kind", workbook ? "workbook" : "application");
      if (workbook) {
        json.member("Exists", !link.found_at.empty());
        json.member("FoundAt", link.found_at);
      }
      json.end_object();
    }
    json.end_array();
    json.key("ReferredToBy");
    json.begin_array();
    for (const std::string& by : book.referred_to_by) json.text(by);
    json.end_array();
    if (!book.problem.empty()) json.member("Problem", book.problem);
    json.end_object();
  }
  json.end_array();
  json.end_object();
  json.finish();
}

}  // namespace qto::cli
