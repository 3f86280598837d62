#include "qto/diagnostics/procedure.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/links/path_helpers.hpp"

namespace qto {
namespace {

/// Opens read-only; a host failure is a null result.
Ref<host::Workbook> try_open(host::Application& app, const std::string& full_name,
                             const std::string& password) {
  Ref<host::Workbook> opened;
  (void)host::tried([&] { opened = app.Workbooks()->Open(full_name, {}, true, password); });
  return opened;
}

}  // namespace

qtoReasonNotOpened DrillDown::open_linked_book(Ref<ModelPart>& part) {
  Procedure proc("DrillDown", "open_linked_book");
  host::Application& app = application();
  const std::string full_name = part->WorkBookFullName();
  const auto record = [&](qtoReasonNotOpened reason, std::string_view password = {}) {
    add_linked_book(*part, reason, password);
    return reason;
  };
  Ref<host::Workbook> active;
  if (!proc.step([&] { active = app.ActiveWorkbook(); })) return record(qtownoOther);
  if (!Main::FileExists(full_name)) return record(qtownoNotFound);
  if (duplicate_book_name_open(part)) return qtoWNOOK;
  if (Main::IsURL(full_name)) {
    bool cancel = false;
    BeforeInternetAccess(part->WorkBookPath(), part->WorkBookName(), cancel);
    if (cancel) return record(qtownoUserDecision);
  }
  // A window that stays behind is no reason not to open.
  (void)host::tried([&] { app.bring_to_front(); });
  std::string password;
  auto workbook = try_open(app, full_name, password);
  if (!workbook) {
    raise_about(AskForPassword, part, password);
    if (password.empty()) return record(qtownoOther);
    workbook = try_open(app, full_name, password);
  }
  qtoReasonNotOpened reason = qtoWNOOK;
  if (!workbook) {
    reason = record(qtownoOther);
  } else if (circularity_guard_ && contains_circular_reference(workbook)) {
    reason = record(qtoWNOCircularReference);
    (void)proc.step([&] { workbook->Close(false); });
  } else {
    record(qtoWNOOK, password);
    remove_row_and_column_labels(workbook);
    if (active) (void)proc.step([&] { active->Activate(); });
  }
  AfterOpenBookAttempt(part->WorkBookPath(), part->WorkBookName(), reason);
  return reason;
}

bool DrillDown::duplicate_book_name_open(const Ref<ModelPart>& part) {
  Procedure proc("DrillDown", "duplicate_book_name_open");
  auto open = application().Workbooks()->find(part->WorkBookName());
  if (!open) return false;
  bool proceed = false;
  DuplicateBookName(open, part->WorkBookPath(), part->WorkBookName(), proceed);
  if (!proceed) add_linked_book(*part, qtownoDuplicateName, "");
  return true;
}

void DrillDown::add_linked_book(const ModelPart& part, qtoReasonNotOpened reason,
                                std::string_view password) {
  Procedure proc("DrillDown", "add_linked_book");
  auto book = make_ref<LinkedBook>();
  book->put_Path(part.WorkBookPath());
  book->put_Name(part.WorkBookName());
  book->put_WhyNotOpened(reason);
  book->set_application(context_->application());
  if (reason == qtoWNOOK) {
    book->put_Password(password);
    context_->BooksOpened()->AddExisting(book);
  } else {
    context_->BooksNotOpened()->AddExisting(book);
  }
}

}  // namespace qto
