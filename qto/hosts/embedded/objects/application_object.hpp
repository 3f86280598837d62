#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/automation/event.hpp"
#include "qto/host/application.hpp"
#include "qto/host/open_error.hpp"
#include "qto/hosts/embedded/objects/open_book.hpp"
#include "qto/hosts/embedded/recalc/calculator.hpp"
#include "qto/hosts/embedded/recalc/open_books.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

namespace qto::embedded {

class TextEvaluator;

/// The application: it owns the open books. Every handle holds it, so the books live until the
/// client has let go of the last handle.
class ApplicationObject final : public host::Application, private OpenBooks {
 public:
  ApplicationObject();
  ~ApplicationObject() override;

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return true; }
  Ref<host::Workbooks> Workbooks() override;
  Ref<host::Workbook> ActiveWorkbook() override;
  Ref<host::Sheet> ActiveSheet() override;
  Ref<Object> Selection() override;
  Ref<host::Window> ActiveWindow() override;
  Ref<host::Chart> ActiveChart() override;
  std::string Caption() override;
  std::int32_t ReferenceStyle() override { return host::xlA1; }
  bool ScreenUpdating() override { return screen_updating_; }
  void put_ScreenUpdating(bool on) override { screen_updating_ = on; }
  bool EnableEvents() override { return enable_events_; }
  void put_EnableEvents(bool on) override { enable_events_ = on; }
  bool DisplayAlerts() override { return display_alerts_; }
  void put_DisplayAlerts(bool on) override { display_alerts_ = on; }
  void Goto(const Ref<host::Range>& reference, bool scroll) override;
  Ref<host::Range> Intersect(const Ref<host::Range>& a, const Ref<host::Range>& b) override;
  std::string ConvertFormula(std::string_view formula, std::int32_t from_style,
                             std::int32_t to_style, const Ref<host::Range>& relative_to) override;
  Ref<host::WorksheetFunction> WorksheetFunction() override;
  Ref<host::DefinedName> find_name(std::string_view name) override;
  Ref<host::DefinedName> Names(std::string_view name) override;

  const std::vector<std::unique_ptr<OpenBook>>& books() const noexcept { return books_; }
  /// By file name without folder, letter case ignored.
  OpenBook* find_book(std::string_view name) const;
  OpenBook* active_book() const noexcept { return active_; }
  /// Takes a book in and makes it the active one; books that link to it see its cells from then on.
  OpenBook& add_book(std::unique_ptr<Book> book);
  void close_book(OpenBook& book);
  void activate(OpenBook& book) noexcept { active_ = &book; }

  /// Before values are read: brings all open books up to date.
  void ensure_calculated() {
    for (const auto& open : books_)
      if (open->book().needs_calculation()) return calculate();
  }

  TextEvaluator& text_evaluator();

  /// The moment of calculation as a serial number of the 1900 system.
  double now() const;

  /// Folders in which linked books are looked for that are not at their place.
  std::vector<std::string> search_folders;
  /// A fixed moment of calculation (serial number, 1900 system) instead of the clock.
  std::optional<double> fixed_now;
  OpenOptions open_options;
  /// Raised before Workbooks.Open fails because of the file.
  Event<const host::OpenError&> open_failed;
  /// Raised by Workbook.FollowHyperlink; a handler sets the flag when it has taken the address.
  Event<std::string_view, bool&> hyperlink_followed;
  /// Size of every window in rows and columns of an ordinary sheet (15 points, 64 pixels).
  int window_rows = 40;
  int window_columns = 20;

 private:
  Ref<host::Application> application() const override;
  Book* find(std::string_view name) const override;
  std::vector<Book*> all() const override;
  void calculate();

  std::vector<std::unique_ptr<OpenBook>> books_;
  OpenBook* active_ = nullptr;
  Calculator calculator_{*this};
  std::unique_ptr<TextEvaluator> text_evaluator_;  // made when first asked for
  bool screen_updating_ = true;
  bool enable_events_ = true;
  bool display_alerts_ = true;
};

}  // namespace qto::embedded
