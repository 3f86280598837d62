#pragma once

#include <optional>
#include <string>

namespace qto::cli {

/// Asks on standard error and reads one line of standard input; nothing at its end and after
/// Ctrl-C.
std::optional<std::string> prompt_line(const std::string& question);
/// The same with "" for nothing.
std::string prompt(const std::string& question);
/// The same without showing what is typed.
std::string prompt_hidden(const std::string& question);

}  // namespace qto::cli
