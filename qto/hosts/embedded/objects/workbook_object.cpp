#include "qto/hosts/embedded/objects/workbook_object.hpp"

#include <algorithm>

#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/checks/password.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/links.hpp"
#include "qto/hosts/embedded/objects/name_object.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"
#include "qto/hosts/embedded/objects/worksheet_object.hpp"

namespace qto::embedded {

WorkbookObject::WorkbookObject(Ref<ApplicationObject> application, OpenBook& open)
    : application_(std::move(application)), open_(&open) {}

WorkbookObject::~WorkbookObject() {
  if (open_) open_->forget_handle();
}

OpenBook& WorkbookObject::open() const {
  if (!open_) fail_gone();
  return *open_;
}

Ref<host::Application> WorkbookObject::application() const {
  open();
  return application_;
}

std::string WorkbookObject::Name() const { return open().book().name; }
std::string WorkbookObject::Path() const { return open().book().path; }
std::string WorkbookObject::FullName() const { return open().full_name(); }

Ref<host::Sheet> WorkbookObject::find_sheet(std::string_view name) const {
  Sheet* found = open_ ? open_->book().find_sheet(name) : nullptr;
  return found ? open_->sheet(*found) : nullptr;
}

Ref<host::Worksheet> WorkbookObject::find_worksheet(std::string_view name) const {
  Sheet* found = open_ ? open_->book().find_sheet(name) : nullptr;
  if (!found || !found->is_worksheet()) return nullptr;
  return open_->worksheet(*found);
}

Ref<host::Sheet> WorkbookObject::Sheets(std::string_view name) const {
  open();
  if (auto found = find_sheet(name)) return found;
  no_member("No sheet " + std::string(name) + " in " + Name());
}

Ref<host::Sheet> WorkbookObject::Sheets(int position) const {
  const auto& sheets = open().book().sheets();
  if (position < 1 || position > std::ssize(sheets))
    no_member("No sheet " + std::to_string(position) + " in " + Name());
  return open_->sheet(*sheets[position - 1]);
}

int WorkbookObject::SheetsCount() const { return static_cast<int>(open().book().sheets().size()); }

Ref<host::Worksheet> WorkbookObject::Worksheets(std::string_view name) const {
  open();
  if (auto found = find_worksheet(name)) return found;
  no_member("No worksheet " + std::string(name) + " in " + Name());
}

Ref<host::Worksheet> WorkbookObject::Worksheets(int position) const {
  int left = position;
  for (const auto& sheet : open().book().sheets())
    if (sheet->is_worksheet() && --left == 0) return open_->worksheet(*sheet);
  no_member("No worksheet " + std::to_string(position) + " in " + Name());
}

int WorkbookObject::WorksheetsCount() const {
  const auto& sheets = open().book().sheets();
  return static_cast<int>(std::count_if(sheets.begin(), sheets.end(),
                                        [](const auto& sheet) { return sheet->is_worksheet(); }));
}

Ref<host::Worksheet> WorkbookObject::AddWorksheet(std::string_view name) {
  Book& book = open().book();
  if (book.structure.enabled) fail("The structure of " + book.name + " is protected");
  const std::string chosen = name.empty() ? free_sheet_name(book) : std::string(name);
  check_sheet_name(book, chosen, nullptr);
  Sheet& added = book.add_sheet(chosen);
  book.everything_changed();
  return open_->worksheet(added);
}

Ref<host::DefinedName> WorkbookObject::find_name(std::string_view name) const {
  if (!open_) return nullptr;
  if (const DefinedName* found = open_->book().names.find(name, nullptr))
    return name_object(*open_, *found);
  return find_qualified_name(*open_, name);
}

Ref<host::DefinedName> WorkbookObject::Names(std::string_view name) const {
  open();
  if (auto found = find_name(name)) return found;
  fail("No name " + std::string(name) + " in " + Name());
}

std::vector<Ref<host::DefinedName>> WorkbookObject::AllNames() const {
  std::vector<Ref<host::DefinedName>> names;
  for (const auto& name : open().book().names.all()) names.push_back(name_object(*open_, *name));
  return names;
}

Ref<host::DefinedName> WorkbookObject::AddName(std::string_view name, std::string_view refers_to) {
  return define_name(open(), nullptr, name, refers_to);
}

bool WorkbookObject::AcceptLabelsInFormulas() const { return open().book().accept_labels; }

void WorkbookObject::put_AcceptLabelsInFormulas(bool on) { open().book().accept_labels = on; }

std::vector<std::string> WorkbookObject::LinkSources(std::int32_t type) const {
  constexpr std::int32_t link_type_applications = 2;  // DDE and OLE
  std::vector<std::string> sources;
  const Book& book = open().book();
  for (std::size_t i = 0; i < book.externals.size(); ++i) {
    const ExternalBook& link = book.externals[i];
    const bool workbook = link.kind == ExternalBook::Kind::workbook;
    if (type == host::link_type_workbooks && workbook && !link.name.empty())
      sources.push_back(stored_name(book, i, open_->stored_links));
    else if (type == link_type_applications && !workbook && !link.application.empty())
      sources.push_back(link.application + "|" + link.document);
  }
  return sources;
}

void WorkbookObject::Unprotect(std::string_view password) {
  unprotect(open().book().structure, "workbook " + Name(), password);
}

void WorkbookObject::Activate() { application_->activate(open()); }

void WorkbookObject::Close(bool save_changes) {
  OpenBook& closing = open();
  if (save_changes) fail("Books are not saved: close " + Name() + " without saving");
  application_->close_book(closing);
}

void WorkbookObject::FollowHyperlink(std::string_view address) {
  open();
  bool taken = false;
  application_->hyperlink_followed(address, taken);
  if (!taken) fail("Nothing is set up to follow " + std::string(address));
}

}  // namespace qto::embedded
