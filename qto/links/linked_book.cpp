#include "qto/links/linked_book.hpp"

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/links/path_helpers.hpp"

namespace qto {

bool LinkedBook::Opened() const {
  Procedure proc("LinkedBook", "Opened[Get]");
  return why_not_opened_ == qtoWNOOK;
}

qtoReasonNotOpened LinkedBook::WhyNotOpened() const {
  Procedure proc("LinkedBook", "WhyNotOpened[Get]");
  return why_not_opened_;
}

void LinkedBook::put_WhyNotOpened(qtoReasonNotOpened reason) {
  Procedure proc("LinkedBook", "WhyNotOpened[Let]");
  if (reason < qtoWNOOK || reason > qtownoOther) throw AutomationError(ErrorNumber::out_of_range);
  why_not_opened_ = reason;
}

std::string LinkedBook::FullNameWithPath() const {
  Procedure proc("LinkedBook", "FullNameWithPath[Get]");
  return Main::AddSeparator(path_, local_file_) + name_;
}

bool LinkedBook::OpenIt(const Ref<host::Application>& in_app) {
  Procedure proc("LinkedBook", "OpenIt");
  if (why_not_opened_ != qtoWNOOK || !in_app) return false;
  return host::tried(
      [&] { in_app->Workbooks()->Open(FullNameWithPath(), false, true, password_); });
}

void LinkedBook::put_Path(std::string_view path) {
  Procedure proc("LinkedBook", "Path[Let]");
  local_file_ = !Main::IsURL(path);
  path_ = Main::TrimSeparator(path, local_file_);
}

const std::string& LinkedBook::Path() const {
  Procedure proc("LinkedBook", "Path[Get]");
  return path_;
}

bool LinkedBook::IsLocalFile() const {
  Procedure proc("LinkedBook", "IsLocalFile[Get]");
  return local_file_;
}

const std::string& LinkedBook::Name() const {
  Procedure proc("LinkedBook", "Name[Get]");
  return name_;
}

void LinkedBook::put_Name(std::string_view name) {
  Procedure proc("LinkedBook", "Name[Let]");
  name_ = name;
}

const std::string& LinkedBook::Password() const {
  Procedure proc("LinkedBook", "Password[Get]");
  return password_;
}

void LinkedBook::put_Password(std::string_view password) {
  Procedure proc("LinkedBook", "Password[Let]");
  password_ = password;
}

void LinkedBook::CloseBook() {
  Procedure proc("LinkedBook", "CloseBook");
  if (why_not_opened_ != qtoWNOOK) return;
  const Ref<host::Application>& app = application_ ? application_ : Main::shared_application();
  if (!app) return;
  // A book that cannot be closed stays open; the record does not change.
  (void)host::tried([&] {
    if (const auto book = app->Workbooks()->find(name_)) book->Close(false);
  });
}

}  // namespace qto
