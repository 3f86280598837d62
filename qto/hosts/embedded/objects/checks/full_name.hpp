#pragma once

#include <string>
#include <string_view>

/// Folders and file names as texts. Both "/" and "\" separate; drive letters and network shares of
/// another system are understood.
namespace qto::embedded {

/// Folder and name with one separator between them, of the folder's own kind.
std::string join_path(std::string_view folder, std::string_view name);
/// What follows the last separator.
std::string_view file_part(std::string_view full_name) noexcept;
/// What precedes the last separator, "" when there is none.
std::string_view folder_part(std::string_view full_name) noexcept;
/// True for a folder that says by itself where it is: from the root, a drive, a share, a scheme.
bool is_absolute_path(std::string_view path) noexcept;
/// True for http:, https: and ftp: addresses.
bool is_internet_address(std::string_view path) noexcept;

}  // namespace qto::embedded
