#include <fcntl.h>
#include <io.h>
#include <windows.h>
// Needs windows.h before it.
#include <shellapi.h>

#include <cstdio>

#include "cli/terminal/interrupt.hpp"
#include "cli/terminal/terminal.hpp"
#include "qto/automation/wide_text_windows.hpp"

namespace qto::cli {
namespace {

HANDLE handle_of(Stream stream) noexcept {
  constexpr DWORD names[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  return GetStdHandle(names[static_cast<int>(stream)]);
}

/// Keeps the console from showing what is typed.
class Silence {
 public:
  explicit Silence(bool wanted)
      : kept_(wanted && GetConsoleMode(handle_of(Stream::input), &before_)) {
    if (kept_)
      SetConsoleMode(handle_of(Stream::input), before_ & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() {
    if (kept_) SetConsoleMode(handle_of(Stream::input), before_);
  }

 private:
  DWORD before_ = 0;
  bool kept_;
};

/// One character of a console, one byte of anything else; false at the end and after Ctrl-C.
bool read_unit(HANDLE input, bool console, wchar_t& unit) {
  DWORD count = 0;
  if (console) return ReadConsoleW(input, &unit, 1, &count, nullptr) && count == 1;
  char byte = 0;
  if (!ReadFile(input, &byte, 1, &count, nullptr) || count != 1) return false;
  unit = static_cast<unsigned char>(byte);
  return true;
}

}  // namespace

bool is_terminal(Stream stream) noexcept {
  DWORD mode = 0;
  return GetConsoleMode(handle_of(stream), &mode) != 0;
}

std::optional<TerminalSize> terminal_size() noexcept {
  CONSOLE_SCREEN_BUFFER_INFO screen{};
  if (!GetConsoleScreenBufferInfo(handle_of(Stream::output), &screen)) return std::nullopt;
  const SMALL_RECT& window = screen.srWindow;
  return TerminalSize{static_cast<std::size_t>(window.Right - window.Left + 1),
                      static_cast<std::size_t>(window.Bottom - window.Top + 1)};
}

std::vector<std::string> start_up(int, char**) {
  // Answers read the same on every system, in a console and in a file.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
  for (const Stream stream : {Stream::output, Stream::errors}) {
    DWORD mode = 0;
    if (GetConsoleMode(handle_of(stream), &mode))
      SetConsoleMode(handle_of(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> words;
  for (int i = 0; i < count; ++i) words.push_back(text::from_wide(wide[i]));
  LocalFree(wide);
  return words;
}

std::optional<std::string> read_line(bool hidden) {
  const Silence silence(hidden);
  const bool console = is_terminal(Stream::input);
  std::wstring line;
  wchar_t unit = 0;
  while (!Interrupt::raised() && read_unit(handle_of(Stream::input), console, unit) &&
         unit != L'\n')
    line.push_back(unit);
  if (unit != L'\n' && (line.empty() || Interrupt::raised())) return std::nullopt;
  if (line.ends_with(L'\r')) line.pop_back();
  return console ? text::from_wide(line) : std::string(line.begin(), line.end());
}

}  // namespace qto::cli
