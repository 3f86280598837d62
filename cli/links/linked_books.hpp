#pragma once

#include <map>
#include <string>

#include "cli/asking/arguments.hpp"
#include "cli/output/json_writer.hpp"
#include "cli/terminal/progress.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/links/linked_books.hpp"

namespace qto::cli {

/// Remembers why files could not be opened, for the engine's records hold only a number.
class OpenFailures {
 public:
  explicit OpenFailures(embedded::Application& application);
  OpenFailures(const OpenFailures&) = delete;
  OpenFailures& operator=(const OpenFailures&) = delete;
  ~OpenFailures();

  /// Why the book of that file name was not opened the last time, with what helps; "" when it did
  /// not fail.
  std::string of(const std::string& book_name) const;

 private:
  embedded::Application application_;
  int token_;
  std::map<std::string, std::string> reasons_;  // by folded file name
};

/// The failure in words, without the name of the file; a password is asked for by its option.
std::string open_failure_text(const host::OpenError& error, bool start_book);

/// Decides for the user, or asks, whether a linked book is opened and with which password.
class LinkedBookChoices {
 public:
  LinkedBookChoices(const Arguments& arguments, Progress& progress)
      : arguments_(arguments), progress_(progress), policy_(arguments.open) {}

  bool opens(const std::string& full_name);
  std::string password(const std::string& book_name);

 private:
  const Arguments& arguments_;
  Progress& progress_;
  OpenPolicy policy_;  // "all" and "none" as answers hold for the rest
};

/// Why a book was not opened, in words and with what helps; "" for the code of success.
std::string reason_text(qtoReasonNotOpened reason);
inline constexpr const char* internet_text = "an internet address, which is never contacted";

void write_books(JsonWriter& json, const LinkedBooks& books, const OpenFailures& failures);
/// Lines about the books that were opened and those that were not, with the reason.
std::string describe_books(const LinkedBooks& opened, const LinkedBooks& not_opened,
                           const OpenFailures& failures);

}  // namespace qto::cli
