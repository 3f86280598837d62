#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

namespace qto::test {

/// A path written with "/", as this system writes it.
inline std::string local_path(std::string path) {
  constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);
  std::replace(path.begin(), path.end(), '/', separator);
  return path;
}

/// The folder that a link's target leads to: of a target beside the book as this system writes it.
inline std::string local_folder(std::string_view target, const char* folder) {
  const bool beside = target.find(':') == std::string_view::npos && !target.starts_with('/') &&
                      !target.starts_with('\\');
  return beside ? local_path(folder) : folder;
}

}  // namespace qto::test
