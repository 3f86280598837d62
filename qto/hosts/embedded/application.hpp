#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/event.hpp"
#include "qto/host/application.hpp"
#include "qto/host/open_error.hpp"
#include "qto/host/workbook.hpp"
#include "qto/host/workbooks.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"

namespace qto::embedded {

class ApplicationObject;
class Book;

/// The spreadsheet application of this process: opens workbook files, calculates, answers the
/// object model. The facade is a handle like any other; the open books live until it and every
/// object obtained from it are gone. Copies are the same application.
class Application {
 public:
  Application();
  Application(const Application&) = default;
  Application& operator=(const Application&) = default;
  ~Application();

  const Ref<host::Application>& ref() const noexcept { return host_; }
  operator Ref<host::Application>() const noexcept { return host_; }
  host::Application* operator->() const noexcept { return host_.get(); }
  Ref<host::Workbooks> Workbooks() const { return host_->Workbooks(); }

  /// A folder in which linked books are looked for that are not at their place.
  void add_search_folder(std::string_view folder);
  /// The full name of the file that Workbooks.Open would open for that name; nothing when there is
  /// none. Nothing is contacted for an internet address.
  std::optional<std::string> find_file(std::string_view full_name) const;
  /// Fixes the moment of calculation (serial number, 1900 system) instead of the clock.
  void set_now(double moment);
  /// Size of every window in rows and columns of ordinary height (15 points) and width (64 pixels);
  /// at least 1 each. How many lines show depends on theirs.
  void set_window_size(int rows, int columns);
  /// Called now and then while a file is opened, with the fraction done (0..1); null: not called.
  void set_open_progress(void (*progress)(double fraction, void* data), void* data);
  /// What is accepted of the files that are opened from now on; beyond it one is refused as too
  /// large.
  void set_limits(const Limits& limits);
  /// Raised before Workbooks.Open fails because of the file: tells why to whoever sees only that it
  /// failed. The text never holds a password.
  Event<const host::OpenError&>& open_failed();
  /// Raised for an address that is to be followed (mail, browser). A handler sets the flag when it
  /// has taken it; otherwise Workbook.FollowHyperlink fails.
  Event<std::string_view, bool&>& hyperlink_followed();
  /// Takes in a book that was built by code. Its name must not be that of an open book.
  Ref<host::Workbook> adopt(std::unique_ptr<Book> book);

 private:
  ApplicationObject* object_;
  Ref<host::Application> host_;
};

}  // namespace qto::embedded
