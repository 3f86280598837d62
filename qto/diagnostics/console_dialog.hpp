#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "qto/diagnostics/error_dialog.hpp"

namespace qto::diagnostics {

/// The error-report dialog on a terminal: it writes report and choices, and reads a letter or a
/// number a line. The end of the input closes the dialog without a choice. One choice more than the
/// row has answers every later report in the same way, "don't report".
class ConsoleDialog : public ErrorDialog {
 public:
  using Write = std::function<void(std::string_view text)>;
  /// Writes a prompt and reads a line; nothing at the end of the input.
  using ReadLine = std::function<std::optional<std::string>(std::string_view prompt)>;

  ConsoleDialog(Write write, ReadLine read_line);

  std::optional<std::int32_t> show(const DialogContent& content) override;
  bool ask(std::string_view question) override;
  void tell(std::string_view message) override;

 private:
  void write_content(const DialogContent& content);
  std::optional<std::int32_t> chosen(const DialogContent& content, std::string_view answer);

  Write write_;
  ReadLine read_line_;
  bool silenced_ = false;
};

}  // namespace qto::diagnostics
