#include "cli/arguments.hpp"
#include "cli/command.hpp"

int main(int argc, char** argv) {
  qto::cli::Arguments arguments;
  if (const auto status = qto::cli::parse_arguments(argc, argv, arguments)) return *status;
  return qto::cli::run_command(arguments);
}
