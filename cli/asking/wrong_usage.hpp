#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace qto::cli {

/// Ends the reading of a command line: prints the help or version that was asked for, or complains
/// on standard error and names what was probably meant. Gives the exit status.
int end_with(const CLI::App& app, const CLI::ParseError& error,
             const std::vector<std::string>& words);

}  // namespace qto::cli
