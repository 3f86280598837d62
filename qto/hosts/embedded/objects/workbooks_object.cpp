#include "qto/hosts/embedded/objects/workbooks_object.hpp"

#include "qto/hosts/embedded/objects/checks/full_name.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/locate_file.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {
namespace {

[[noreturn]] void fail_to_open(const ApplicationObject& application, const OpenFailure& failure) {
  const host::OpenError error = failure.for_clients();
  application.open_failed(error);
  throw error;
}

std::unique_ptr<Book> read_file(const ApplicationObject& application, const std::string& path,
                                std::string_view password) {
  OpenOptions options = application.open_options;
  options.password = password;
  try {
    return open_workbook(path, options);
  } catch (const OpenFailure& failure) {
    fail_to_open(application, failure);
  }
}

std::string free_book_name(const ApplicationObject& application) {
  for (int number = 1;; ++number) {
    std::string name = "Book" + std::to_string(number);
    if (!application.find_book(name)) return name;
  }
}

}  // namespace

Ref<host::Workbook> WorkbooksObject::find(std::string_view name) const {
  OpenBook* found = application_->find_book(name);
  return found ? Ref<host::Workbook>(found->workbook()) : nullptr;
}

Ref<host::Workbook> WorkbooksObject::find(int position) const {
  if (position < 1 || position > Count()) return nullptr;
  return application_->books()[position - 1]->workbook();
}

Ref<host::Workbook> WorkbooksObject::Item(std::string_view name) const {
  if (auto found = find(name)) return found;
  no_member("No workbook " + std::string(name) + " is open");
}

Ref<host::Workbook> WorkbooksObject::Item(int position) const {
  if (auto found = find(position)) return found;
  no_member("No workbook " + std::to_string(position) + " is open");
}

int WorkbooksObject::Count() const { return static_cast<int>(application_->books().size()); }

Ref<host::Workbook> WorkbooksObject::Open(std::string_view file_name, std::optional<bool>,
                                          bool read_only, std::string_view password) {
  const std::string wanted(file_name);
  if (is_internet_address(file_name)) fail("Internet addresses are not opened: " + wanted);
  const auto path = locate_file(*application_, file_name);
  if (!path)
    fail_to_open(*application_,
                 OpenFailure(OpenFailureKind::not_found, wanted, "", 0, "no such file"));
  if (OpenBook* open = application_->find_book(file_part(*path))) {
    if (!is_same_file(open->full_name(), *path))
      fail("Another workbook named " + open->book().name + " is open: " + open->full_name());
    application_->activate(*open);
    return open->workbook();
  }
  OpenBook& opened = application_->add_book(read_file(*application_, *path, password));
  opened.read_only = read_only;
  return opened.workbook();
}

Ref<host::Workbook> WorkbooksObject::Add() {
  auto book = std::make_unique<Book>();
  book->name = free_book_name(*application_);
  book->add_sheet("Sheet1");
  return application_->add_book(std::move(book)).workbook();
}

}  // namespace qto::embedded
