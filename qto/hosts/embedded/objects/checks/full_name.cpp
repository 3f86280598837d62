#include "qto/hosts/embedded/objects/checks/full_name.hpp"

#include "qto/automation/text.hpp"

namespace qto::embedded {
namespace {

constexpr std::string_view separators = "/\\";

bool starts_with_nocase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() &&
         text::equal_ascii_nocase(text.substr(0, start.size()), start);
}

}  // namespace

std::string join_path(std::string_view folder, std::string_view name) {
  if (folder.empty()) return std::string(name);
  std::string joined(folder);
  if (separators.find(joined.back()) == std::string_view::npos)
    joined +=
        folder.find('/') == std::string_view::npos && folder.find('\\') != std::string_view::npos
            ? '\\'
            : '/';
  return joined.append(name);
}

std::string_view file_part(std::string_view full_name) noexcept {
  const std::size_t cut = full_name.find_last_of(separators);
  return cut == std::string_view::npos ? full_name : full_name.substr(cut + 1);
}

std::string_view folder_part(std::string_view full_name) noexcept {
  const std::size_t cut = full_name.find_last_of(separators);
  return cut == std::string_view::npos ? std::string_view{} : full_name.substr(0, cut);
}

bool is_absolute_path(std::string_view path) noexcept {
  if (path.empty()) return false;
  if (separators.find(path.front()) != std::string_view::npos) return true;
  if (path.size() >= 2 && path[1] == ':') return true;
  return path.find("://") != std::string_view::npos || starts_with_nocase(path, "file:");
}

bool is_internet_address(std::string_view path) noexcept {
  for (const std::string_view scheme : {"http:", "https:", "ftp:"})
    if (starts_with_nocase(path, scheme)) return true;
  return false;
}

}  // namespace qto::embedded
