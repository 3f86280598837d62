#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qto/host/application.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/hosts/libreoffice/document/document.hpp"

namespace qto::libreoffice {

class WorkbookObject;

/// A document that is open, with what belongs to it while it is.
struct OpenBook {
  OpenBook(const OpenDocuments& others, const Document::Model& model, std::string file,
           std::string password, std::string title)
      : document(others, model, std::move(file), std::move(password), std::move(title)) {}

  Document document;
  WorkbookObject* handle = nullptr;  ///< as long as somebody holds it
  /// The chart that is activated and its selected series, -1 for the chart itself.
  Ref<SheetSlot> chart_sheet;
  int chart = 0;
  int series = -1;
};

/// The application: it owns the open books. Every handle holds it, so the books live until the
/// client has let go of the last handle.
class ApplicationObject final : public host::Application, public OpenDocuments {
 public:
  ApplicationObject();
  ~ApplicationObject() override;

  Ref<host::HostObject> Parent() const override { return application(); }
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
  OpenBook* find_book(std::string_view name) const;
  Document* find_document(std::string_view name) const override;
  const FunctionNames& function_names() const override { return function_names_; }
  OpenBook* book_of(const Document& document) const;
  /// Null when no book is open.
  OpenBook* active();
  void activate(OpenBook& book) noexcept { active_ = &book; }
  OpenBook& open(const std::string& file, const std::string& password);
  OpenBook& add();
  void close(OpenBook& book);

  Ref<WorkbookObject> handle(OpenBook& book);
  /// The handle of a sheet, the same as long as somebody holds it.
  Ref<host::Sheet> handle(SheetSlot& slot);
  Ref<host::Worksheet> worksheet(SheetSlot& slot);

  /// The cell that names and texts are seen from: of the active sheet of the active book.
  CellPos active_cell();

 private:
  Ref<host::Application> application() const override;
  void read_function_names(const Document& document);

  FunctionNames function_names_;
  bool names_known_ = false;
  std::vector<std::unique_ptr<OpenBook>> books_;
  OpenBook* active_ = nullptr;
  bool screen_updating_ = true;
  bool enable_events_ = true;
  bool display_alerts_ = true;
};

/// The application is going; the next one that is asked for is a new one.
void forget_application(const ApplicationObject& application) noexcept;

}  // namespace qto::libreoffice
