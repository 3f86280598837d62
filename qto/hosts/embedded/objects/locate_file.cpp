#include "qto/hosts/embedded/objects/locate_file.hpp"

#include <algorithm>

#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"

namespace qto::embedded {
namespace {

namespace fs = std::filesystem;

bool is_file(const fs::path& path) {
  std::error_code failure;
  const fs::file_status status = fs::status(path, failure);
  return fs::exists(status) && !fs::is_directory(status);
}

bool links_to(const Book& book, std::string_view name) {
  return std::any_of(book.externals.begin(), book.externals.end(), [&](const ExternalBook& link) {
    return link.kind == ExternalBook::Kind::workbook && text::equal_fold(link.name, name);
  });
}

std::vector<std::string> folders_to_search(const ApplicationObject& application,
                                           std::string_view name) {
  std::vector<std::string> folders;
  if (const OpenBook* active = application.active_book()) folders.push_back(active->book().path);
  for (const auto& open : application.books())
    if (links_to(open->book(), name)) folders.push_back(open->book().path);
  folders.insert(folders.end(), application.search_folders.begin(),
                 application.search_folders.end());
  std::erase(folders, "");
  return folders;
}

std::string full_path(const fs::path& path) {
  std::error_code failure;
  const fs::path full = fs::absolute(path, failure);
  return text::from_path((failure ? path : full).lexically_normal());
}

}  // namespace

bool is_file_here(std::string_view path) { return is_file(text::to_path(native_path(path))); }

std::string native_path(std::string_view file_name) {
  constexpr std::string_view scheme = "file://";
  std::string path(file_name);
  if (text::equal_ascii_nocase(file_name.substr(0, scheme.size()), scheme))
    path.erase(0, scheme.size());
  if constexpr (fs::path::preferred_separator == '/')
    std::replace(path.begin(), path.end(), '\\', '/');
  else if (path.size() < file_name.size() && path.starts_with('/') && path.find(':') == 2)
    path.erase(0, 1);  // file:///C:/book.xlsx
  return path;
}

std::optional<std::string> file_in_folder(const std::string& folder, std::string_view name) {
  const fs::path place = text::to_path(folder);
  if (is_file(place / text::to_path(name))) return std::string(name);
  // Books from systems where letter case does not matter.
  std::error_code failure;
  for (fs::directory_iterator at(place, failure), end; !failure && at != end;
       at.increment(failure)) {
    std::string found = text::from_path(at->path().filename());
    if (text::equal_fold(found, name) && is_file(at->path())) return found;
  }
  return std::nullopt;
}

std::optional<std::string> locate_file(const ApplicationObject& application,
                                       std::string_view file_name) {
  if (const fs::path given = text::to_path(file_name); is_file(given)) return full_path(given);
  const std::string path = native_path(file_name);
  const fs::path native = text::to_path(path);
  if (is_file(native)) return full_path(native);
  const std::string name(file_part(path));
  if (name.empty()) return std::nullopt;
  for (const std::string& folder : folders_to_search(application, name)) {
    const fs::path place = text::to_path(folder);
    if (const fs::path beside = place / native; !is_absolute_path(path) && is_file(beside))
      return full_path(beside);
    if (const auto found = file_in_folder(folder, name))
      return full_path(place / text::to_path(*found));
  }
  return std::nullopt;
}

bool is_same_file(const std::string& a, const std::string& b) {
  std::error_code failure;
  return a == b || fs::equivalent(text::to_path(a), text::to_path(b), failure);
}

}  // namespace qto::embedded
