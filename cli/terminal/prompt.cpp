#include "cli/terminal/prompt.hpp"

#include <fmt/format.h>

#include "cli/terminal/terminal.hpp"

namespace qto::cli {
namespace {

void ask(const std::string& question) {
  fmt::print(stderr, "{}", question);
  std::fflush(stderr);
}

}  // namespace

std::optional<std::string> prompt_line(const std::string& question) {
  ask(question);
  return read_line(false);
}

std::string prompt(const std::string& question) { return prompt_line(question).value_or(""); }

std::string prompt_hidden(const std::string& question) {
  ask(question);
  const auto answer = read_line(true);
  fmt::print(stderr, "\n");
  return answer.value_or("");
}

}  // namespace qto::cli
