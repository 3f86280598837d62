#pragma once

#include <map>
#include <string>

#include "qto/hosts/embedded/application.hpp"

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

}  // namespace qto::cli
