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
/// True when both paths lead to one file.
bool is_same_file(const std::string& a, const std::string& b);

}  // namespace qto::embedded
