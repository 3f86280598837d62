#include "cli/links/linked_books.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "cli/output/part_text.hpp"
#include "cli/terminal/prompt.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"

namespace qto::cli {

OpenFailures::OpenFailures(embedded::Application& application)
    : application_(application),
      token_(application_.open_failed().add([this](const host::OpenError& error) {
        const std::string name = text::from_path(text::to_path(error.file).filename());
        reasons_[text::fold_case(name)] = open_failure_text(error, false);
      })) {}

OpenFailures::~OpenFailures() { application_.open_failed().remove(token_); }

std::string OpenFailures::of(const std::string& book_name) const {
  const auto found = reasons_.find(text::fold_case(book_name));
  return found == reasons_.end() ? "" : found->second;
}

std::string open_failure_text(const host::OpenError& error, bool start_book) {
  std::string text = error.what();
  if (!start_book && text.starts_with(error.file + ": ")) text.erase(0, error.file.size() + 2);
  if (error.kind == host::OpenFailureKind::encrypted)
    text += start_book ? ". Give its password with --password TEXT"
                       : "; give its password with --password BOOK=TEXT";
  return text;
}

namespace {

/// The engine joins folder and name by a backslash wherever it runs.
std::string readable(std::string full_name) {
  if (full_name.starts_with('/')) std::replace(full_name.begin(), full_name.end(), '\\', '/');
  return one_line(full_name);
}

std::string why_not_opened(const LinkedBook& book, const OpenFailures& failures) {
  if (book.WhyNotOpened() == qtownoUserDecision && !book.IsLocalFile()) return internet_text;
  const std::string failure =
      book.WhyNotOpened() == qtownoOther ? failures.of(book.Name()) : std::string();
  return failure.empty() ? reason_text(book.WhyNotOpened()) : failure;
}

}  // namespace

std::string reason_text(qtoReasonNotOpened reason) {
  switch (reason) {
    case qtoWNOOK:
      return "";
    case qtownoUserDecision:
      return "not to be opened; --open always opens it";
    case qtoWNOCircularReference:
      return "holds a circular reference";
    case qtownoNotFound:
      return "not found; --folder DIR says where to look";
    case qtownoDuplicateName:
      return "another book of that name is open";
    case qtownoOther:
      break;
  }
  return "could not be opened";
}

bool LinkedBookChoices::opens(const std::string& full_name) {
  if (policy_ != OpenPolicy::ask) return policy_ == OpenPolicy::always;
  progress_.hide();
  const std::string answer = prompt(fmt::format(
      "A formula links to {}. Open it? [y]es, [n]o, [a]ll, n[o]ne: ", readable(full_name)));
  const char first = answer.empty() ? 'n' : answer[0];
  if (first == 'a' || first == 'A') policy_ = OpenPolicy::always;
  if (first == 'o' || first == 'O') policy_ = OpenPolicy::never;
  return first == 'y' || first == 'Y' || policy_ == OpenPolicy::always;
}

std::string LinkedBookChoices::password(const std::string& book_name) {
  std::string given = password_for(arguments_, book_name);
  if (given.empty() && arguments_.open == OpenPolicy::ask) {
    progress_.hide();
    given = prompt_hidden(fmt::format("Password of {}: ", book_name));
  }
  return given;
}

void write_books(JsonWriter& json, const LinkedBooks& books, const OpenFailures& failures) {
  json.begin_array();
  books.for_each([&](const LinkedBook& book) {
    json.begin_object();
    json.member("Path", book.Path());
    json.member("Name", book.Name());
    json.member("FullNameWithPath", book.FullNameWithPath());
    json.member("WhyNotOpened", std::int64_t{book.WhyNotOpened()});
    json.member("Reason", why_not_opened(book, failures));
    json.end_object();
  });
  json.end_array();
}

std::string describe_books(const LinkedBooks& opened, const LinkedBooks& not_opened,
                           const OpenFailures& failures) {
  std::string lines;
  if (opened.Count() > 0) lines += "\nLinked books opened:\n";
  opened.for_each([&lines](const LinkedBook& book) {
    lines += "  " + readable(book.FullNameWithPath()) + "\n";
  });
  if (not_opened.Count() > 0) lines += "\nLinked books not opened:\n";
  not_opened.for_each([&](const LinkedBook& book) {
    lines += fmt::format("  {}: {} (reason {})\n", readable(book.FullNameWithPath()),
                         why_not_opened(book, failures), static_cast<int>(book.WhyNotOpened()));
  });
  return lines;
}

}  // namespace qto::cli
