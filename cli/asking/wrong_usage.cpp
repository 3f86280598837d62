#include "cli/asking/wrong_usage.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/asking/complaint.hpp"
#include "cli/asking/nearest.hpp"

namespace qto::cli {
namespace {

std::vector<std::string> command_names(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> option_names(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options())
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  return names;
}

bool is_option(const std::string& word) { return word.starts_with('-') && word.size() > 1; }

/// "there is no option '--dept'. Did you mean --depth?"
std::string unexpected(const CLI::App& command, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    if (!is_option(word)) continue;
    const std::string name = word.substr(0, word.find('='));
    const std::string near = nearest(name, option_names(command));
    return "there is no option '" + name + "'" +
           (near.empty() ? "" : ". Did you mean " + near + "?");
  }
  std::string text = "one word too many:";
  for (const std::string& word : words) text += " '" + word + "'";
  return text;
}

std::string complaint_about(const CLI::App& app, const CLI::ParseError& error,
                            const std::vector<std::string>& words) {
  const auto used = app.get_subcommands();
  if (used.empty() && words.size() > 1 && !is_option(words[1]))
    return "there is no command '" + words[1] + "'" +
           suggestion(words[1], command_names(app), "commands are");
  // An option that is none is told before what is missing.
  const auto extras = app.remaining(true);
  if (std::any_of(extras.begin(), extras.end(), is_option) ||
      dynamic_cast<const CLI::ExtrasError*>(&error))
    return unexpected(used.empty() ? app : *used[0], extras);
  return error.what();
}

}  // namespace

int end_with(const CLI::App& app, const CLI::ParseError& error,
             const std::vector<std::string>& words) {
  const auto used = app.get_subcommands();
  const bool misspelt = used.empty() && words.size() > 1 && !is_option(words[1]);
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success) && !misspelt)
    return app.exit(error);
  fmt::print(stderr, "qto: {}\nTry 'qto {}--help'.\n", complaint_about(app, error, words),
             used.empty() ? "" : used[0]->get_name() + " ");
  return wrong_usage;
}

}  // namespace qto::cli
