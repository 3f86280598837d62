#include "qto/hosts/embedded/objects/open_book.hpp"

#include <atomic>

#include "qto/hosts/embedded/objects/application_object.hpp"
#include "qto/hosts/embedded/objects/chart_objects.hpp"
#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {

std::uint64_t next_stamp() noexcept {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

SheetSlot::SheetSlot(OpenBook& owner, Sheet& of) : sheet(&of), book(&owner), stamp(next_stamp()) {}

OpenBook::OpenBook(ApplicationObject& application, std::unique_ptr<Book> book)
    : application_(application), book_(std::move(book)), formulas_(*book_) {
  if (book_->sheets().empty()) book_->add_sheet("Sheet1");
  if (book_->active_sheet >= book_->sheets().size()) return;
  Sheet& front = *book_->sheets()[book_->active_sheet];
  if (front.visibility == SheetVisibility::visible) active_sheet_ = &front;
}

OpenBook::~OpenBook() {
  for (auto& [sheet, slot] : slots_) {
    slot->sheet = nullptr;
    slot->book = nullptr;
  }
  if (handle_) handle_->book_gone();
}

std::string OpenBook::full_name() const { return join_path(book_->path, book_->name); }

SheetSlot& OpenBook::slot(const Sheet& sheet) {
  Ref<SheetSlot>& found = slots_[&sheet];
  if (!found) found = make_ref<SheetSlot>(*this, const_cast<Sheet&>(sheet));
  return *found;
}

Ref<WorkbookObject> OpenBook::workbook() {
  if (!handle_) handle_ = new WorkbookObject(Ref<ApplicationObject>(&application_), *this);
  return Ref<WorkbookObject>(handle_);
}

Ref<host::Sheet> OpenBook::sheet(Sheet& sheet) {
  SheetSlot& entry = slot(sheet);
  if (entry.handle) return Ref<host::Sheet>(entry.handle);
  Ref<host::Sheet> made;
  if (sheet.is_worksheet())
    made = make_ref<WorksheetObject>(workbook(), entry);
  else
    made = make_ref<ChartSheetObject>(workbook(), entry);
  entry.handle = made.get();
  return made;
}

Ref<WorksheetObject> OpenBook::worksheet(Sheet& sheet) {
  SheetSlot& entry = slot(sheet);
  if (entry.handle) return Ref<WorksheetObject>(static_cast<WorksheetObject*>(entry.handle));
  auto made = make_ref<WorksheetObject>(workbook(), entry);
  entry.handle = made.get();
  return made;
}

void OpenBook::remove_sheet(Sheet& sheet) {
  if (const auto found = slots_.find(&sheet); found != slots_.end()) {
    found->second->sheet = nullptr;
    found->second->book = nullptr;
    slots_.erase(found);
  }
  if (chart_selection.sheet == &sheet) chart_selection = {};
  if (active_sheet_ == &sheet) active_sheet_ = nullptr;
  book_->remove_sheet(sheet);
}

Sheet& OpenBook::active_sheet() const {
  if (active_sheet_) return *active_sheet_;
  for (const auto& sheet : book_->sheets())
    if (sheet->visibility == SheetVisibility::visible) return *sheet;
  return *book_->sheets().front();
}

void OpenBook::set_active_sheet(Sheet& sheet) {
  if (active_sheet_ != &sheet) chart_selection = {};
  active_sheet_ = &sheet;
}

CellPos OpenBook::active_cell() const { return active_sheet().selection.first; }

}  // namespace qto::embedded
