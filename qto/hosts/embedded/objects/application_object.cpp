#include "qto/hosts/embedded/objects/application_object.hpp"

#include <algorithm>
#include <ctime>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"
#include "qto/hosts/embedded/objects/chart_place.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/evaluation.hpp"
#include "qto/hosts/embedded/objects/links.hpp"
#include "qto/hosts/embedded/objects/name_object.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"
#include "qto/hosts/embedded/objects/references/convert_reference.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"
#include "qto/hosts/embedded/objects/sheet_view.hpp"
#include "qto/hosts/embedded/objects/window_object.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"
#include "qto/hosts/embedded/objects/workbooks_object.hpp"
#include "qto/hosts/embedded/objects/worksheet_function_object.hpp"

namespace qto::embedded {

ApplicationObject::ApplicationObject() = default;
ApplicationObject::~ApplicationObject() = default;

Ref<host::Application> ApplicationObject::application() const {
  return Ref<host::Application>(const_cast<ApplicationObject*>(this));
}

Ref<host::HostObject> ApplicationObject::Parent() const { return application(); }

Ref<host::Workbooks> ApplicationObject::Workbooks() {
  return make_ref<WorkbooksObject>(Ref<ApplicationObject>(this));
}

Ref<host::Workbook> ApplicationObject::ActiveWorkbook() {
  return active_ ? Ref<host::Workbook>(active_->workbook()) : nullptr;
}

Ref<host::Sheet> ApplicationObject::ActiveSheet() {
  return active_ ? active_->sheet(active_->active_sheet()) : nullptr;
}

Ref<Object> ApplicationObject::Selection() {
  if (!active_) return nullptr;
  const auto& chart = active_->chart_selection;
  if (chart.sheet && chart.series >= 0) return selected_series(*active_);
  if (chart.sheet) return active_chart(*active_);
  Sheet& sheet = active_->active_sheet();
  if (!sheet.is_worksheet()) return nullptr;
  std::vector<Rect> blocks{sheet.selection};
  const auto& more = active_->slot(sheet).more_selected;
  blocks.insert(blocks.end(), more.begin(), more.end());
  return make_ref<RangeObject>(active_->worksheet(sheet), blocks);
}

Ref<host::Window> ApplicationObject::ActiveWindow() {
  return active_ ? Ref<host::Window>(make_ref<WindowObject>(active_->workbook())) : nullptr;
}

Ref<host::Chart> ApplicationObject::ActiveChart() {
  return active_ ? active_chart(*active_) : nullptr;
}

std::string ApplicationObject::Caption() {
  return active_ ? active_->book().name + " - qto" : "qto";
}

void ApplicationObject::Goto(const Ref<host::Range>& reference, bool scroll) {
  RangeObject& range = range_of(reference);
  OpenBook& book = range.sheet()->open();
  Sheet& sheet = range.sheet()->sheet();
  activate_sheet(book, sheet);
  range.Select();
  const CellPos first = range.block().first;
  if (!scroll) return scroll_into_view(*this, sheet, first);
  // A frozen cell shows as it is.
  if (first.row >= first_scrollable(sheet).row) scroll_to_row(sheet, first.row);
  if (first.column >= first_scrollable(sheet).column) scroll_to_column(sheet, first.column);
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
  return make_ref<RangeObject>(first.sheet(), common);
}

std::string ApplicationObject::ConvertFormula(std::string_view formula, std::int32_t from_style,
                                              std::int32_t to_style,
                                              const Ref<host::Range>& relative_to) {
  const CellPos at = relative_to ? relative_to->block().first
                     : active_   ? active_->active_cell()
                                 : CellPos{};
  if (from_style == to_style) return std::string(formula);
  const bool to_a1 = to_style == host::xlA1;
  auto converted = to_a1 ? a1_from_r1c1(formula, at) : r1c1_from_a1(formula, at);
  if (!converted) fail("The formula cannot be converted: " + std::string(formula));
  return *std::move(converted);
}

Ref<host::WorksheetFunction> ApplicationObject::WorksheetFunction() {
  return make_ref<WorksheetFunctionObject>(Ref<ApplicationObject>(this));
}

Ref<host::DefinedName> ApplicationObject::find_name(std::string_view name) {
  if (!active_) return nullptr;
  const Sheet& sheet = active_->active_sheet();
  if (const DefinedName* found = active_->book().names.resolve(name, &sheet))
    return name_object(*active_, *found);
  return find_qualified_name(*active_, name);
}

Ref<host::DefinedName> ApplicationObject::Names(std::string_view name) {
  if (auto found = find_name(name)) return found;
  fail("No name " + std::string(name) + " in the active workbook");
}

OpenBook* ApplicationObject::find_book(std::string_view name) const {
  for (const auto& open : books_)
    if (text::equal_fold(open->book().name, name)) return open.get();
  return nullptr;
}

OpenBook& ApplicationObject::add_book(std::unique_ptr<Book> book) {
  books_.push_back(std::make_unique<OpenBook>(*this, std::move(book)));
  active_ = books_.back().get();
  resolve_links(active_->book(), search_folders, active_->stored_links);
  for (const auto& open : books_)
    if (open.get() != active_) links_changed(open->book(), active_->book().name);
  return *active_;
}

void ApplicationObject::close_book(OpenBook& book) {
  const auto found = std::find_if(books_.begin(), books_.end(),
                                  [&](const auto& open) { return open.get() == &book; });
  for (const auto& open : books_)
    if (open.get() != &book) remember_values(open->book(), book.book());
  books_.erase(found);
  if (active_ == &book) active_ = books_.empty() ? nullptr : books_.back().get();
}

Book* ApplicationObject::find(std::string_view name) const {
  OpenBook* found = find_book(name);
  return found ? &found->book() : nullptr;
}

std::vector<Book*> ApplicationObject::all() const {
  std::vector<Book*> books;
  for (const auto& open : books_) books.push_back(&open->book());
  return books;
}

void ApplicationObject::calculate() {
  const double moment = now();
  for (const auto& open : books_)
    if (open->book().needs_calculation()) calculator_.calculate(open->book(), moment);
}

TextEvaluator& ApplicationObject::text_evaluator() {
  if (!text_evaluator_) text_evaluator_ = std::make_unique<TextEvaluator>(*this);
  return *text_evaluator_;
}

double ApplicationObject::now() const {
  if (fixed_now) return *fixed_now;
  const std::time_t moment = std::time(nullptr);
  std::tm local{};
  localtime_r(&moment, &local);
  const auto day =
      formats::date_serial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, false);
  return day.value_or(0) + (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / 86400.0;
}

}  // namespace qto::embedded
