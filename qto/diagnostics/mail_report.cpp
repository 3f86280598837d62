#include "qto/diagnostics/mail_report.hpp"

#include <utility>

#include "qto/automation/apartment.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto::diagnostics {
namespace {

struct MailState {
  Support support;
  FollowHyperlink follow = nullptr;
};

thread_local constinit ApartmentState<MailState> mail;

MailState& mail_state() { return mail.get(); }

constexpr std::string_view omission = " ...";

bool unreserved(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~").find(c) != std::string_view::npos;
}

std::string percent_encoded(std::string_view text, std::string_view also_plain = "") {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    if (unreserved(c) || also_plain.find(c) != std::string_view::npos) {
      out.push_back(c);
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    out.append(1, '%').append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
  }
  return out;
}

std::string address_with(const Support& support, const ErrorReport& report) {
  return "mailto:" + percent_encoded(support.address, "@,") +
         "?Subject=" + percent_encoded(support.subject) + "&Body=" + percent_encoded(report.text());
}

/// Takes the last letter off, however many bytes it has.
void drop_letter(std::string& text) {
  while (!text.empty() && (text.back() & 0xC0) == 0x80) text.pop_back();
  if (!text.empty()) text.pop_back();
}

bool follow(const std::string& address) {
  Procedure proc("Diagnostics", "follow_hyperlink");
  bool followed = false;
  (void)proc.step([&] {
    if (!mail_state().follow) return;
    mail_state().follow(address);
    followed = true;
  });
  return followed;
}

std::string apology(const ErrorReport& report) {
  return "We apologize that Quarto was unable to create the e-mail. Please call us with details "
         "of the error on " +
         support().telephone +
         ". One of our technical support staff will be pleased to help you. Please give them the "
         "following information: " +
         report.text();
}

}  // namespace

void set_support(Support support) { mail_state().support = std::move(support); }

const Support& support() { return mail_state().support; }

void set_follow_hyperlink(FollowHyperlink follow) { mail_state().follow = follow; }

std::string mail_address(const Support& support, const ErrorReport& report) {
  std::string address = address_with(support, report);
  if (address.size() <= longest_mail_address) return address;
  ErrorReport shortened = report;
  const std::string whole = std::exchange(shortened.description, std::string(omission));
  const std::size_t without = address_with(support, shortened).size();
  std::string& kept = shortened.description = whole;
  while (!kept.empty() && without + percent_encoded(kept).size() > longest_mail_address) {
    // A letter is at most three characters a byte; many are taken off at once while far too long.
    const std::size_t over = without + percent_encoded(kept).size() - longest_mail_address;
    for (std::size_t i = 0; i < 1 + over / 12 && !kept.empty(); ++i) drop_letter(kept);
  }
  kept += omission;
  return address_with(support, shortened);
}

void send_report(const ErrorReport& report, ErrorDialog& dialog) {
  Procedure proc("Diagnostics", "send_report");
  if (!follow(mail_address(support(), report)) || !dialog.ask("Did the e-mail appear correctly?"))
    dialog.tell(apology(report));
}

}  // namespace qto::diagnostics
