#include "cli/asking/arguments.hpp"
#include "cli/command.hpp"
#include "cli/terminal/terminal.hpp"

int main(int argc, char** argv) {
  qto::cli::Arguments arguments;
  if (const auto status = qto::cli::parse_arguments(qto::cli::start_up(argc, argv), arguments))
    return *status;
  return qto::cli::run_command(arguments);
}
