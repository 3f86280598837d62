#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>

#include "cli/terminal/interrupt.hpp"
#include "cli/terminal/terminal.hpp"

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

/// Keeps the terminal from showing what is typed.
class Silence {
 public:
  explicit Silence(bool wanted) : kept_(wanted && tcgetattr(STDIN_FILENO, &before_) == 0) {
    if (!kept_) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() {
    if (kept_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
  }

 private:
  termios before_{};
  bool kept_;
};

}  // namespace

bool is_terminal(Stream stream) noexcept { return isatty(static_cast<int>(stream)) != 0; }
static_assert(static_cast<int>(Stream::input) == STDIN_FILENO);
static_assert(static_cast<int>(Stream::output) == STDOUT_FILENO);
static_assert(static_cast<int>(Stream::errors) == STDERR_FILENO);

std::optional<TerminalSize> terminal_size() noexcept {
  winsize window{};
  if (!is_terminal(Stream::output) || ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 ||
      window.ws_col == 0)
    return std::nullopt;
  return TerminalSize{window.ws_col, window.ws_row};
}

std::vector<std::string> start_up(int argc, char** argv) {
  // Who reads no further wants no complaint either, whatever the caller's choice.
  std::signal(SIGPIPE, SIG_DFL);
  return {argv, argv + argc};
}

std::optional<std::string> read_line(bool hidden) {
  const Silence silence(hidden);
  std::string line;
  char c = 0;
  while (wait_for_input() && read(STDIN_FILENO, &c, 1) == 1 && c != '\n') line.push_back(c);
  if (c != '\n' && (line.empty() || Interrupt::raised())) return std::nullopt;
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace qto::cli
