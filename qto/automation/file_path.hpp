#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

/// Paths of the file system from and to UTF-8, whatever the system itself writes them in.
namespace qto::text {

/// Never fails: what is no UTF-8 leads to a file that does not exist.
std::filesystem::path to_path(std::string_view text);
std::string from_path(const std::filesystem::path& path);

/// As std::fopen().
std::FILE* open_file(const std::string& path, const char* mode);

}  // namespace qto::text
