#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qto/diagnostics/error_dialog.hpp"

/// The report by e-mail.
namespace qto::diagnostics {

/// Where reports go. All "" at first: the dialog then offers no e-mail.
struct Support {
  std::string address;  ///< "support@example.com"
  std::string subject;
  std::string telephone;
};

void set_support(Support support);
const Support& support();

/// Hands an address to the system through the spreadsheet host, and throws when that fails. The
/// engine sets it with its first application.
using FollowHyperlink = void (*)(std::string_view address);
void set_follow_hyperlink(FollowHyperlink follow);

/// Longer addresses are refused by some mail programs and by the systems that start them.
inline constexpr std::size_t longest_mail_address = 2000;

/// "mailto:" with address, subject and body, percent-encoded. A report that would make it too long
/// loses the end of its description.
std::string mail_address(const Support& support, const ErrorReport& report);

/// Opens the e-mail, asks whether it appeared, and tells what to do when it did not.
void send_report(const ErrorReport& report, ErrorDialog& dialog);

}  // namespace qto::diagnostics
