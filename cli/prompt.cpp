#include "cli/prompt.hpp"

#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

namespace qto::cli {
namespace {

std::string read_line() {
  std::string line;
  char c;
  // Unbuffered: a Ctrl-C must end the wait at once, and nothing else reads standard input.
  while (read(STDIN_FILENO, &c, 1) == 1 && c != '\n') line.push_back(c);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace

std::string prompt(const std::string& question) {
  fmt::print(stderr, "{}", question);
  std::fflush(stderr);
  return read_line();
}

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
