#include "qto/diagnostics/console_dialog.hpp"

#include <algorithm>
#include <utility>

#include "qto/automation/text.hpp"

namespace qto::diagnostics {
namespace {

constexpr char silence_letter = 'a';
constexpr std::string_view silence_choice = "[a] Don't report, and don't ask again";

/// A terminal wants line feeds alone.
std::string unix_lines(std::string_view text) {
  std::string out(text);
  std::erase(out, '\r');
  return out;
}

/// The letter behind "&", in lower case; 0 where a label has none.
char letter_of(std::string_view label) {
  const std::size_t mark = label.find('&');
  if (mark == std::string_view::npos || mark + 1 == label.size()) return 0;
  const char c = label[mark + 1];
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// "[d] Don't report"
std::string shown(const DialogButton& button) {
  const char letter = letter_of(button.label);
  std::string plain(button.label);
  std::erase(plain, '&');
  return "[" + (letter ? std::string(1, letter) : std::to_string(button.position)) + "] " + plain;
}

char first_letter(std::string_view answer) {
  answer = text::trim(answer);
  if (answer.empty()) return 0;
  const char c = answer.front();
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

ConsoleDialog::ConsoleDialog(Write write, ReadLine read_line)
    : write_(std::move(write)), read_line_(std::move(read_line)) {}

std::optional<std::int32_t> ConsoleDialog::show(const DialogContent& content) {
  if (silenced_) return static_cast<std::int32_t>(Outcome::leave);
  write_content(content);
  while (const auto answer = read_line_("Choice: "))
    if (const auto position = chosen(content, *answer)) return position;
  write_("\n");
  return std::nullopt;
}

void ConsoleDialog::write_content(const DialogContent& content) {
  std::string out = "\n" + std::string(content.caption) + "\n\n";
  if (!content.message.empty()) out += unix_lines(content.message) + "\n\n";
  if (!content.sent) out += unix_lines(content.report) + unix_lines(content.further_lines) + "\n";
  for (const std::string_view text : content.texts) out.append(text).append("\n");
  out += "\n";
  for (const DialogButton& button : content.buttons) out += "  " + shown(button) + "\n";
  if (!content.sent) out.append("  ").append(silence_choice).append("\n");
  write_(out);
}

std::optional<std::int32_t> ConsoleDialog::chosen(const DialogContent& content,
                                                  std::string_view answer) {
  const char letter = first_letter(answer);
  if (letter == 0) return std::nullopt;
  if (letter == silence_letter && !content.sent) {
    silenced_ = true;
    return static_cast<std::int32_t>(Outcome::leave);
  }
  for (const DialogButton& button : content.buttons)
    if (letter == letter_of(button.label) || text::trim(answer) == std::to_string(button.position))
      return button.position;
  return std::nullopt;
}

bool ConsoleDialog::ask(std::string_view question) {
  while (const auto answer = read_line_(std::string(question) + " [y]es, [n]o: ")) {
    const char letter = first_letter(*answer);
    if (letter == 'y' || letter == 'n') return letter == 'y';
  }
  return false;
}

void ConsoleDialog::tell(std::string_view message) { write_(unix_lines(message) + "\n"); }

}  // namespace qto::diagnostics
