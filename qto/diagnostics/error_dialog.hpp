#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/diagnostics/error_report.hpp"

namespace qto::diagnostics {

/// One action of the dialog. Its position in the row is the outcome; positions that are missing in
/// a row are actions that are not offered.
struct DialogButton {
  std::int32_t position;
  std::string_view label;  ///< "&" stands before the letter that selects it
};

/// What the error-report dialog shows.
struct DialogContent {
  std::string_view caption;
  std::string message;                  ///< its lines are parted by a line break
  std::vector<std::string_view> texts;  ///< below the message, one a line
  std::string report;                   ///< lines that end with carriage return and line feed
  std::string further_lines;            ///< in the same form, for the user alone
  std::vector<DialogButton> buttons;
  bool sent = false;  ///< the report went out; the texts thank for it
};

/// The error-report dialog, as an embedding client shows it. Calls come on the engine's thread, in
/// the middle of whatever failed.
class ErrorDialog {
 public:
  virtual ~ErrorDialog() = default;
  /// Shows modally and answers the position of the button that was pressed; nothing when the dialog
  /// was closed in any other way. A window offers no close command in its system menu.
  virtual std::optional<std::int32_t> show(const DialogContent& content) = 0;
  /// A question with the buttons Yes and No; true for Yes.
  virtual bool ask(std::string_view question) = 0;
  /// A message with one button.
  virtual void tell(std::string_view message) = 0;
};

/// The dialog of every report from now on; null (as at first) for none.
void set_error_dialog(std::shared_ptr<ErrorDialog> dialog);
const std::shared_ptr<ErrorDialog>& error_dialog();

}  // namespace qto::diagnostics
