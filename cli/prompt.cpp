#include "cli/prompt.hpp"

#include <fmt/format.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "cli/interrupt.hpp"

namespace qto::cli {
namespace {

/// False when Ctrl-C came first. The flag is looked at again and again: the signal may come just
/// before the wait begins, and would not end it then.
bool wait_for_input() {
  constexpr int pause = 100;  // milliseconds
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (!Interrupt::raised())
    if (poll(&input, 1, pause) > 0) return true;
  return false;
}

/// Nothing at the end of the input and after Ctrl-C.
std::optional<std::string> read_line() {
  std::string line;
  char c = 0;
  while (wait_for_input() && read(STDIN_FILENO, &c, 1) == 1 && c != '\n') line.push_back(c);
  if (c != '\n' && (line.empty() || Interrupt::raised())) return std::nullopt;
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace

std::optional<std::string> prompt_line(const std::string& question) {
  fmt::print(stderr, "{}", question);
  std::fflush(stderr);
  return read_line();
}

std::string prompt(const std::string& question) { return prompt_line(question).value_or(""); }

std::string prompt_hidden(const std::string& question) {
  termios before{};
  const bool terminal = tcgetattr(STDIN_FILENO, &before) == 0;
  if (terminal) {
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  std::string answer = prompt(question);
  if (terminal) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
  fmt::print(stderr, "\n");
  return answer;
}

}  // namespace qto::cli
