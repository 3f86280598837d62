#include "qto/hosts/libreoffice/objects/application_object.hpp"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/AddressConvention.hpp>
#include <com/sun/star/sheet/FormulaLanguage.hpp>
#include <com/sun/star/sheet/FormulaMapGroup.hpp>
#include <com/sun/star/sheet/XFormulaOpCodeMapper.hpp>
#include <unordered_map>

#include "qto/automation/text.hpp"
#include "qto/hosts/libreoffice/document/load_document.hpp"
#include "qto/hosts/libreoffice/objects/chart_objects.hpp"
#include "qto/hosts/libreoffice/objects/name_object.hpp"
#include "qto/hosts/libreoffice/objects/range_object.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/objects/window_objects.hpp"
#include "qto/hosts/libreoffice/objects/workbook_object.hpp"
#include "qto/hosts/libreoffice/objects/workbooks_object.hpp"
#include "qto/hosts/libreoffice/objects/worksheet_function_object.hpp"
#include "qto/hosts/libreoffice/objects/worksheet_object.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {

ApplicationObject::ApplicationObject() { Office::running(); }

ApplicationObject::~ApplicationObject() {
  forget_application(*this);
  for (const auto& book : books_) {
    const Document::Model model = book->document.model();
    close_document(model);
  }
}

Ref<host::Application> ApplicationObject::application() const {
  return Ref<host::Application>(const_cast<ApplicationObject*>(this));
}

Ref<host::Workbooks> ApplicationObject::Workbooks() {
  return make_ref<WorkbooksObject>(Ref<ApplicationObject>(this));
}

OpenBook* ApplicationObject::active() {
  if (active_ && active_->document.alive()) return active_;
  const auto found = std::find_if(books_.rbegin(), books_.rend(),
                                  [](const auto& book) { return book->document.alive(); });
  active_ = found == books_.rend() ? nullptr : found->get();
  return active_;
}

Ref<host::Workbook> ApplicationObject::ActiveWorkbook() {
  return active() ? Ref<host::Workbook>(handle(*active_)) : nullptr;
}

Ref<host::Sheet> ApplicationObject::ActiveSheet() {
  return active() ? handle(*active_->document.active) : nullptr;
}

Ref<Object> ApplicationObject::Selection() {
  if (!active()) return nullptr;
  if (active_->chart_sheet && active_->series >= 0) return selected_series(*this, *active_);
  if (active_->chart_sheet) return active_chart(*this, *active_);
  SheetSlot& slot = *active_->document.active;
  if (slot.is_chart) return nullptr;
  std::vector<Rect> blocks{slot.selection};
  blocks.insert(blocks.end(), slot.more_selected.begin(), slot.more_selected.end());
  return make_ref<RangeObject>(ref_cast<WorksheetObject>(handle(slot)), std::move(blocks));
}

Ref<host::Window> ApplicationObject::ActiveWindow() {
  return active() ? Ref<host::Window>(make_ref<WindowObject>(handle(*active_))) : nullptr;
}

Ref<host::Chart> ApplicationObject::ActiveChart() {
  return active() ? active_chart(*this, *active_) : nullptr;
}

std::string ApplicationObject::Caption() {
  return active() ? active_->document.name() + " - LibreOffice" : "LibreOffice";
}

void ApplicationObject::Goto(const Ref<host::Range>& reference, bool scroll) {
  RangeObject& range = range_of(reference);
  SheetSlot& slot = range.sheet()->slot();
  activate_sheet(*this, slot);
  range.Select();
  const CellPos first = range.block().first;
  if (scroll)
    slot.scroll = first;
  else
    scroll_into_view(slot, first);
}

Ref<host::Range> ApplicationObject::Intersect(const Ref<host::Range>& a,
                                              const Ref<host::Range>& b) {
  const RangeObject& first = range_of(a);
  const RangeObject& second = range_of(b);
  if (first.sheet() != second.sheet()) return nullptr;
  std::vector<Rect> common;
  for (const Rect& one : first.blocks())
    for (const Rect& other : second.blocks())
      if (const auto block = one.intersect(other)) common.push_back(*block);
  if (common.empty()) return nullptr;
  return make_ref<RangeObject>(first.sheet(), std::move(common));
}

std::string ApplicationObject::ConvertFormula(std::string_view formula, std::int32_t from_style,
                                              std::int32_t to_style,
                                              const Ref<host::Range>& relative_to) {
  if (from_style == to_style) return std::string(formula);
  if (!active()) fail("No workbook is open", "Application.ConvertFormula");
  Document& document = active_->document;
  const CellPos at = relative_to ? relative_to->block().first : active_cell();
  const bool equals = formula.starts_with('=');
  return guarded("Converting a formula", [&] {
    const auto& parser = document.parser();
    const uno::Reference<com::sun::star::beans::XPropertySet> settings(parser,
                                                                       uno::UNO_QUERY_THROW);
    const auto convention = [&](std::int32_t style) {
      settings->setPropertyValue("FormulaConvention",
                                 uno::Any(static_cast<sal_Int16>(
                                     style == host::xlA1 ? sheet::AddressConvention::XL_OOX
                                                         : sheet::AddressConvention::XL_R1C1)));
    };
    const com::sun::star::table::CellAddress place(document.active->position, at.column - 1,
                                                   at.row - 1);
    convention(from_style);
    const auto tokens = parser->parseFormula(wide(formula.substr(equals ? 1 : 0)), place);
    convention(to_style);
    const std::string text = utf8(parser->printFormula(tokens, place));
    convention(host::xlA1);
    if (text.empty()) fail("The formula cannot be converted: " + std::string(formula));
    return (equals ? "=" : "") + text;
  });
}

Ref<host::WorksheetFunction> ApplicationObject::WorksheetFunction() {
  return make_ref<WorksheetFunctionObject>(Ref<ApplicationObject>(this));
}

Ref<host::DefinedName> ApplicationObject::find_name(std::string_view name) {
  if (!active()) return nullptr;
  Document& document = active_->document;
  if (const NameEntry* entry = document.names().resolve(name, document.active))
    return name_object(*this, *active_, *entry);
  return find_qualified_name(*this, *active_, name);
}

Ref<host::DefinedName> ApplicationObject::Names(std::string_view name) {
  if (auto found = find_name(name)) return found;
  fail("No name " + std::string(name) + " in the active workbook", "Application.Names");
}

OpenBook* ApplicationObject::find_book(std::string_view name) const {
  for (const auto& book : books_)
    if (book->document.alive() && text::equal_fold(book->document.name(), name)) return book.get();
  return nullptr;
}

Document* ApplicationObject::find_document(std::string_view name) const {
  OpenBook* book = find_book(name);
  return book ? &book->document : nullptr;
}

OpenBook* ApplicationObject::book_of(const Document& document) const {
  for (const auto& book : books_)
    if (&book->document == &document) return book.get();
  return nullptr;
}

OpenBook& ApplicationObject::open(const std::string& file, const std::string& password) {
  Document::Model model = load_document(Office::running(), file, password);
  return guarded("Opening a book", [&]() -> OpenBook& {
    books_.push_back(std::make_unique<OpenBook>(*this, model, file, password, ""));
    active_ = books_.back().get();
    read_function_names(active_->document);
    return *active_;
  });
}

OpenBook& ApplicationObject::add() {
  int number = 1;
  while (find_book("Book" + std::to_string(number))) ++number;
  Document::Model model = new_document(Office::running());
  return guarded("Adding a book", [&]() -> OpenBook& {
    books_.push_back(
        std::make_unique<OpenBook>(*this, model, "", "", "Book" + std::to_string(number)));
    active_ = books_.back().get();
    read_function_names(active_->document);
    return *active_;
  });
}

void ApplicationObject::close(OpenBook& book) {
  close_document(book.document.model());
  if (book.handle) book.handle->forget();
  if (active_ == &book) active_ = nullptr;
  std::erase_if(books_, [&](const auto& open) { return open.get() == &book; });
}

void ApplicationObject::read_function_names(const Document& document) {
  if (std::exchange(names_known_, true)) return;
  const uno::Reference<com::sun::star::lang::XMultiServiceFactory> factory(document.model(),
                                                                           uno::UNO_QUERY_THROW);
  const uno::Reference<sheet::XFormulaOpCodeMapper> mapper(
      factory->createInstance("com.sun.star.sheet.FormulaOpCodeMapper"), uno::UNO_QUERY_THROW);
  const auto key = [](const sheet::FormulaOpCodeMapEntry& entry) {
    OUString name;  // functions of extensions share one code
    entry.Token.Data >>= name;
    return std::to_string(entry.Token.OpCode) + utf8(name);
  };
  std::unordered_map<std::string, std::string> files;
  const auto functions = sheet::FormulaMapGroup::FUNCTIONS;
  for (const auto& entry : mapper->getAvailableMappings(sheet::FormulaLanguage::OOXML, functions)) {
    const std::string name = utf8(entry.Name);
    // An extension's function stands here by its own name and by that of the file.
    if (!name.starts_with("COM.SUN.STAR.")) files.emplace(key(entry), name);
  }
  for (const auto& entry : mapper->getAvailableMappings(sheet::FormulaLanguage::API, functions))
    if (const auto file = files.find(key(entry)); file != files.end())
      function_names_.add(utf8(entry.Name), file->second);
}

Ref<WorkbookObject> ApplicationObject::handle(OpenBook& book) {
  if (book.handle) return Ref<WorkbookObject>(book.handle);
  auto made = make_ref<WorkbookObject>(Ref<ApplicationObject>(this), book);
  book.handle = made.get();
  return made;
}

Ref<host::Sheet> ApplicationObject::handle(SheetSlot& slot) {
  if (slot.handle) return Ref<host::Sheet>(slot.handle);
  if (!slot.document) fail_gone();
  OpenBook* book = book_of(*slot.document);
  Ref<host::Sheet> made;
  if (slot.is_chart)
    made = make_ref<ChartSheetObject>(handle(*book), slot);
  else
    made = make_ref<WorksheetObject>(handle(*book), slot);
  slot.handle = made.get();
  return made;
}

Ref<host::Worksheet> ApplicationObject::worksheet(SheetSlot& slot) {
  return ref_cast<host::Worksheet>(handle(slot));
}

CellPos ApplicationObject::active_cell() {
  return active() ? active_->document.active->selection.first : CellPos{};
}

}  // namespace qto::libreoffice
