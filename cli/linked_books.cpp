#include "cli/linked_books.hpp"

#include <fmt/format.h>

#include "cli/prompt.hpp"

namespace qto::cli {
namespace {

const char* reason_text(qtoReasonNotOpened reason) {
  switch (reason) {
    case qtoWNOOK:
      return "opened";
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
  return "could not be opened; a password may be missing (--password BOOK=TEXT)";
}

}  // namespace

bool LinkedBookChoices::opens(const ModelPart& unknown) {
  if (policy_ != OpenPolicy::ask) return policy_ == OpenPolicy::always;
  progress_.hide();
  const std::string answer = prompt(fmt::format(
      "A formula links to {}. Open it? [y]es, [n]o, [a]ll, n[o]ne: ", unknown.WorkBookFullName()));
  const char first = answer.empty() ? 'n' : answer[0];
  if (first == 'a' || first == 'A') policy_ = OpenPolicy::always;
  if (first == 'o' || first == 'O') policy_ = OpenPolicy::never;
  return first == 'y' || first == 'Y' || policy_ == OpenPolicy::always;
}

std::string LinkedBookChoices::password(const ModelPart& unknown) {
  const std::string book = unknown.WorkBookName();
  std::string given = password_for(arguments_, book);
  if (given.empty() && arguments_.open == OpenPolicy::ask) {
    progress_.hide();
    given = prompt_hidden(fmt::format("Password of {}: ", book));
  }
  return given;
}

void write_books(JsonWriter& json, const LinkedBooks& books) {
  json.begin_array();
  books.for_each([&json](const LinkedBook& book) {
    json.begin_object();
    json.member("Path", book.Path());
    json.member("Name", book.Name());
    json.member("FullNameWithPath", book.FullNameWithPath());
    json.member("WhyNotOpened", std::int64_t{book.WhyNotOpened()});
    json.end_object();
  });
  json.end_array();
}

std::string describe_books(const LinkedBooks& opened, const LinkedBooks& not_opened) {
  std::string lines;
  if (opened.Count() > 0) lines += "\nLinked books opened:\n";
  opened.for_each(
      [&lines](const LinkedBook& book) { lines += "  " + book.FullNameWithPath() + "\n"; });
  if (not_opened.Count() > 0) lines += "\nLinked books not opened:\n";
  not_opened.for_each([&lines](const LinkedBook& book) {
    lines += fmt::format("  {}: {} (reason {})\n", book.FullNameWithPath(),
                         reason_text(book.WhyNotOpened()), static_cast<int>(book.WhyNotOpened()));
  });
  return lines;
}

}  // namespace qto::cli
