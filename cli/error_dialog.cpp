#include "cli/error_dialog.hpp"

#include <fmt/format.h>

#include <memory>

#include "cli/terminal/prompt.hpp"
#include "qto/diagnostics/console_dialog.hpp"

namespace qto::cli {

AskAboutReports::AskAboutReports(const Arguments& arguments, Progress& progress) {
  if (arguments.reports != ReportPolicy::ask) return;
  diagnostics::set_error_dialog(std::make_shared<diagnostics::ConsoleDialog>(
      [&progress](std::string_view text) {
        progress.hide();
        fmt::print(stderr, "{}", text);
      },
      [](std::string_view question) { return prompt_line(std::string(question)); }));
}

AskAboutReports::~AskAboutReports() { diagnostics::set_error_dialog(nullptr); }

}  // namespace qto::cli
