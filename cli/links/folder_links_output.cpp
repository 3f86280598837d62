#include <fmt/format.h>

#include "cli/links/folder_links.hpp"
#include "cli/output/part_text.hpp"
#include "qto/automation/file_path.hpp"

namespace qto::cli {
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
