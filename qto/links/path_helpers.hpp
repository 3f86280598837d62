#pragma once

#include <string>
#include <string_view>

/// The helpers of the shared module for workbook locations. A path is local or an internet address;
/// local folders are joined with "\", addresses with "/".
namespace qto::Main {

/// True for a text that begins with an internet scheme ("http:", "https:", "file:" …). A drive
/// letter is no scheme.
bool IsURL(std::string_view text);

/// True when a file or folder exists at that path. An internet address counts as existing, for
/// nothing may be contacted before the client was asked. On POSIX "\" is understood as "/".
bool FileExists(std::string_view text);

/// Removes one trailing "/" from a local path, one trailing "\" from an address; everything else
/// stays, so that a local folder keeps its backslash.
std::string TrimSeparator(std::string_view text, bool local_file);

/// Appends the separator of the kind ("\" local, "/" address) unless the text ends with it.
std::string AddSeparator(std::string_view text, bool local_file);

}  // namespace qto::Main
