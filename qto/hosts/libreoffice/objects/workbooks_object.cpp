#include "qto/hosts/libreoffice/objects/workbooks_object.hpp"

#include <algorithm>
#include <filesystem>

#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"
#include "qto/host/open_error.hpp"
#include "qto/hosts/libreoffice/objects/workbook_object.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

bool is_internet_address(std::string_view name) {
  for (const char* scheme : {"http://", "https://", "ftp://"})
    if (text::equal_ascii_nocase(name.substr(0, std::string_view(scheme).size()), scheme))
      return true;
  return false;
}

/// The file that a name means: "\" between folder and name is "/" here. A linked book that is not
/// at its place is looked for beside the active book.
std::string locate(std::string_view name, const OpenBook* active) {
  std::string native(name);
  std::error_code failure;
  if (!std::filesystem::exists(text::to_path(native), failure))
    std::replace(native.begin(), native.end(), '\\', '/');
  std::filesystem::path path = std::filesystem::absolute(text::to_path(native), failure);
  if (!std::filesystem::exists(path, failure) && active && !active->document.path().empty()) {
    const auto beside = text::to_path(active->document.path()) / path.filename();
    if (std::filesystem::exists(beside, failure)) path = beside;
  }
  return text::from_path(path.lexically_normal());
}

}  // namespace

Ref<host::Workbook> WorkbooksObject::find(std::string_view name) const {
  OpenBook* found = application_->find_book(name);
  return found ? Ref<host::Workbook>(application_->handle(*found)) : nullptr;
}

Ref<host::Workbook> WorkbooksObject::find(int position) const {
  for (const auto& book : application_->books())
    if (book->document.alive() && --position == 0) return application_->handle(*book);
  return nullptr;
}

Ref<host::Workbook> WorkbooksObject::Item(std::string_view name) const {
  if (auto found = find(name)) return found;
  no_member("No workbook " + std::string(name) + " is open", "Workbooks.Item");
}

Ref<host::Workbook> WorkbooksObject::Item(int position) const {
  if (auto found = find(position)) return found;
  no_member("No workbook " + std::to_string(position) + " is open", "Workbooks.Item");
}

int WorkbooksObject::Count() const {
  const auto& books = application_->books();
  return static_cast<int>(std::count_if(books.begin(), books.end(),
                                        [](const auto& book) { return book->document.alive(); }));
}

Ref<host::Workbook> WorkbooksObject::Open(std::string_view file_name, std::optional<bool>, bool,
                                          std::string_view password) {
  if (is_internet_address(file_name))
    fail("Internet addresses are not opened: " + std::string(file_name), "Workbooks.Open");
  const std::string file = locate(file_name, application_->active());
  std::error_code failure;
  if (!std::filesystem::exists(text::to_path(file), failure))
    throw host::OpenError(host::OpenFailureKind::not_found,
                          std::string(file_name) + ": no such file", std::string(file_name));
  const std::string name = text::from_path(text::to_path(file).filename());
  if (OpenBook* open = application_->find_book(name)) {
    if (open->document.file() != file &&
        !std::filesystem::equivalent(text::to_path(open->document.file()), text::to_path(file),
                                     failure))
      fail("Another workbook named " + name + " is open: " + open->document.full_name(),
           "Workbooks.Open");
    application_->activate(*open);
    return application_->handle(*open);
  }
  return application_->handle(application_->open(file, std::string(password)));
}

Ref<host::Workbook> WorkbooksObject::Add() { return application_->handle(application_->add()); }

}  // namespace qto::libreoffice
