#include "qto/hosts/embedded/xlsx/external_target.hpp"

#include <algorithm>

#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/xlsx/part_path.hpp"

namespace qto::embedded {
namespace {

bool is_path_separator(char c) noexcept { return c == '/' || c == '\\'; }

bool has_drive(std::string_view path) noexcept {
  const auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  return path.size() >= 2 && letter(path[0]) && path[1] == ':';
}

bool is_share(std::string_view path) noexcept { return path.starts_with("\\\\"); }

FileLocation split(std::string path, char separator) {
  std::replace_if(path.begin(), path.end(), is_path_separator, separator);
  const std::size_t name = path.find_last_of(separator) + 1;
  return {path.substr(0, name), path.substr(name)};
}

/// The path that a file URL names, or nothing for any other text.
bool take_file_url(std::string& path) {
  constexpr std::string_view scheme = "file:";
  if (!text::equal_ascii_nocase(std::string_view(path).substr(0, scheme.size()), scheme))
    return false;
  std::string_view rest = std::string_view(path).substr(scheme.size());
  constexpr std::string_view this_machine = "//localhost/";
  const bool local = text::equal_ascii_nocase(rest.substr(0, this_machine.size()), this_machine);
  const std::string without_host =
      local ? "///" + std::string(rest.substr(this_machine.size())) : "";
  if (local) rest = without_host;
  if (rest.starts_with("///")) {
    rest.remove_prefix(2);
    if (has_drive(rest.substr(1)) || is_share(rest.substr(1))) rest.remove_prefix(1);
    path = std::string(rest);
  } else if (rest.starts_with("//")) {
    // The host of such a URL is a server with shares.
    path = "\\\\" + std::string(rest.substr(2));
  } else {
    path = std::string(rest);
  }
  return true;
}

FileLocation relative(std::string path, std::string_view base_folder) {
  std::replace(path.begin(), path.end(), '\\', '/');
  if (base_folder.empty()) return split(std::move(path), '/');
  const auto joined = text::to_path(base_folder) / text::to_path(path);
  constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);
  return split(text::from_path(joined.lexically_normal()), separator);
}

}  // namespace

FileLocation locate_target(std::string_view target, std::string_view base_folder) {
  std::string path(target);
  if (!take_file_url(path) && path.find("://") != std::string::npos) return split(path, '/');
  path = percent_decoded(path);
  if (has_drive(path) || is_share(path)) return split(std::move(path), '\\');
  if (!path.empty() && path.front() == '/') return split(std::move(path), '/');
  return relative(std::move(path), base_folder);
}

}  // namespace qto::embedded
