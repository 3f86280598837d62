#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qto/automation/ref.hpp"
#include "qto/options/drill_options.hpp"

namespace qto::cli {

enum class Operation { tree, inputs, errors, part, links, show };
enum class OpenPolicy { ask, always, never };
enum class ReportPolicy { ask, list };
/// Which spreadsheet host opens the books.
enum class HostChoice { embedded, libreoffice };

/// A password for one book, or for any when `book` is "".
struct Password {
  std::string book;
  std::string text;
};

/// The command line, checked as far as it can be without the book.
struct Arguments {
  Operation operation = Operation::tree;
  HostChoice host = HostChoice::embedded;
  std::string book;
  std::string item;                 ///< "" for the contents of the book
  std::vector<std::string> starts;  ///< of a drill, as written
  std::string starts_file;          ///< "-": standard input; "": none
  Ref<DrillOptions> drill = make_ref<DrillOptions>();
  bool ignore_zero_one = false;
  std::int32_t depth = 0;      ///< 0: no bound
  std::int32_t max_items = 0;  ///< 0: no limit
  OpenPolicy open = OpenPolicy::never;
  std::vector<Password> passwords;
  std::vector<std::string> folders;
  ReportPolicy reports = ReportPolicy::list;
  std::string trace_file;    ///< "": no trace log
  std::string trace_viewer;  ///< "": none; a socket or "fd:N"
  bool json = false;
  bool full = false;
  bool unhide = false;
};

/// Reads the command line. A status means that the process ends with it: a text that was asked for
/// or a complaint has been printed.
std::optional<int> parse_arguments(const std::vector<std::string>& words, Arguments& arguments);

/// "tree" and so on.
const char* name_of(Operation operation) noexcept;
/// The password that was given for a book of that file name, "" for none.
std::string password_for(const Arguments& arguments, const std::string& book_name);

}  // namespace qto::cli
