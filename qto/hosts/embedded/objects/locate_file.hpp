#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/objects/application_object.hpp"

namespace qto::embedded {

/// The absolute path of the file that a workbook reference means, or nothing. Looked for at the
/// place that is named, then beside the active book, beside the books that link to it, and in the
/// application's search folders. Where "/" separates folders, "\" is understood as well.
std::optional<std::string> locate_file(const ApplicationObject& application,
                                       std::string_view file_name);
/// The text as a path of this system: a file: scheme and foreign separators taken away.
std::string native_path(std::string_view file_name);
/// True when there is a file (no folder) at that place.
bool is_file_here(std::string_view path);
/// The name that the file has in the folder, letter case ignored when it is not there as written;
/// nothing when there is none.
std::optional<std::string> file_in_folder(const std::string& folder, std::string_view name);
/// True when both paths lead to one file.
bool is_same_file(const std::string& a, const std::string& b);

}  // namespace qto::embedded
