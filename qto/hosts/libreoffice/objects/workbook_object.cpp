#include "qto/hosts/libreoffice/objects/workbook_object.hpp"

#include <algorithm>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/util/XProtectable.hpp>

#include "qto/automation/text.hpp"
#include "qto/hosts/libreoffice/objects/name_object.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/objects/worksheet_object.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {

WorkbookObject::~WorkbookObject() {
  if (book_) book_->handle = nullptr;
}

OpenBook& WorkbookObject::book() const {
  if (!exists()) fail_gone();
  return *book_;
}

Ref<host::Sheet> WorkbookObject::find_sheet(std::string_view name) const {
  SheetSlot* found = exists() ? book_->document.find_sheet(name) : nullptr;
  return found ? application_->handle(*found) : nullptr;
}

Ref<host::Worksheet> WorkbookObject::find_worksheet(std::string_view name) const {
  return ref_cast<host::Worksheet>(find_sheet(name));
}

Ref<host::Sheet> WorkbookObject::Sheets(std::string_view name) const {
  book();
  if (auto found = find_sheet(name)) return found;
  no_member("No sheet " + std::string(name) + " in " + Name(), "Workbook.Sheets");
}

Ref<host::Sheet> WorkbookObject::Sheets(int position) const {
  const auto& sheets = document().sheets();
  if (position < 1 || position > std::ssize(sheets))
    no_member("No sheet " + std::to_string(position) + " in " + Name(), "Workbook.Sheets");
  return application_->handle(*sheets[position - 1]);
}

int WorkbookObject::SheetsCount() const { return static_cast<int>(document().sheets().size()); }

Ref<host::Worksheet> WorkbookObject::Worksheets(std::string_view name) const {
  book();
  if (auto found = find_worksheet(name)) return found;
  no_member("No worksheet " + std::string(name) + " in " + Name(), "Workbook.Worksheets");
}

Ref<host::Worksheet> WorkbookObject::Worksheets(int position) const {
  int left = position;
  for (const auto& slot : document().sheets())
    if (!slot->is_chart && --left == 0) return application_->worksheet(*slot);
  no_member("No worksheet " + std::to_string(position) + " in " + Name(), "Workbook.Worksheets");
}

int WorkbookObject::WorksheetsCount() const {
  const auto& sheets = document().sheets();
  return static_cast<int>(std::count_if(sheets.begin(), sheets.end(),
                                        [](const auto& slot) { return !slot->is_chart; }));
}

Ref<host::Worksheet> WorkbookObject::AddWorksheet(std::string_view name) {
  check_new(document());
  std::string chosen(name);
  for (int number = SheetsCount() + 1; chosen.empty() || (name.empty() && find_sheet(chosen));
       ++number)
    chosen = "Sheet" + std::to_string(number);
  if (find_sheet(chosen)) fail("There is a sheet named " + chosen + " in " + Name());
  return guarded("Adding a sheet",
                 [&] { return application_->worksheet(document().add_sheet(chosen)); });
}

Ref<host::DefinedName> WorkbookObject::find_name(std::string_view name) const {
  if (!exists()) return nullptr;
  if (const NameEntry* entry = document().names().find(name, nullptr))
    return name_object(*application_, *book_, *entry);
  return find_qualified_name(*application_, *book_, name);
}

Ref<host::DefinedName> WorkbookObject::Names(std::string_view name) const {
  book();
  if (auto found = find_name(name)) return found;
  fail("No name " + std::string(name) + " in " + Name(), "Workbook.Names");
}

std::vector<Ref<host::DefinedName>> WorkbookObject::AllNames() const {
  std::vector<Ref<host::DefinedName>> names;
  for (const NameEntry& entry : document().names().all())
    names.push_back(name_object(*application_, *book_, entry));
  return names;
}

Ref<host::DefinedName> WorkbookObject::AddName(std::string_view name, std::string_view refers_to) {
  return define_name(*application_, book(), nullptr, name, refers_to);
}

bool WorkbookObject::AcceptLabelsInFormulas() const {
  bool on = false;
  document().properties()->getPropertyValue("LookUpLabels") >>= on;
  return on;
}

void WorkbookObject::put_AcceptLabelsInFormulas(bool on) {
  guarded("Labels in formulas",
          [&] { document().properties()->setPropertyValue("LookUpLabels", uno::Any(on)); });
}

std::vector<std::string> WorkbookObject::LinkSources(std::int32_t type) const {
  std::vector<std::string> sources;
  if (type != host::link_type_workbooks) return sources;
  for (const std::string& url : document().links()) {
    if (url.empty()) continue;
    const LinkTarget target = link_target(url);
    sources.push_back(target.folder + target.name);
  }
  return sources;
}

void WorkbookObject::Unprotect(std::string_view password) {
  unprotect(
      uno::Reference<com::sun::star::util::XProtectable>(document().model(), uno::UNO_QUERY_THROW),
      "workbook " + Name(), password);
}

void WorkbookObject::Close(bool save_changes) {
  OpenBook& closing = book();
  if (save_changes) fail("Books are not saved: close " + Name() + " without saving");
  const Ref<WorkbookObject> self(this);
  application_->close(closing);
}

void WorkbookObject::FollowHyperlink(std::string_view address) {
  fail("Nothing is set up to follow " + std::string(address), "Workbook.FollowHyperlink");
}

}  // namespace qto::libreoffice
