#pragma once

#include <string>

namespace qto::cli {

/// Asks on standard error and reads one line of standard input, "" at its end.
std::string prompt(const std::string& question);
/// The same without showing what is typed.
std::string prompt_hidden(const std::string& question);

}  // namespace qto::cli
