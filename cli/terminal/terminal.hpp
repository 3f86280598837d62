#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// The terminal or console that the command runs in, if any.
namespace qto::cli {

enum class Stream { input, output, errors };
bool is_terminal(Stream stream) noexcept;

struct TerminalSize {
  std::size_t columns = 0;
  std::size_t rows = 0;
};
/// Of the terminal that standard output goes to; nothing when that is none.
std::optional<TerminalSize> terminal_size() noexcept;

/// Makes the standard streams carry UTF-8 as it stands; gives the words of the command line in
/// UTF-8, that of the program first.
std::vector<std::string> start_up(int argc, char** argv);

/// One line of standard input without its end, letters hidden while they are typed if wanted;
/// nothing at the end of the input and after Ctrl-C.
std::optional<std::string> read_line(bool hidden);

}  // namespace qto::cli
