#include "qto/links/main.hpp"

#include <utility>

#include "qto/automation/apartment.hpp"
#include "qto/automation/error.hpp"
#include "qto/diagnostics/mail_report.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/host/restore.hpp"
#include "qto/links/contexts.hpp"

namespace qto::Main {
namespace {

thread_local constinit ApartmentState<Contexts> contexts;

}  // namespace

const Ref<Context>& context() { return contexts.get().current(); }

const Ref<host::Application>& shared_application() { return context()->application(); }

void set_shared_application(Ref<host::Application> application) {
  contexts.get().enter(std::move(application));
  diagnostics::set_follow_hyperlink(follow_hyperlink);  // how error reports are sent
}

const Ref<LinkedBooks>& BooksOpened() { return context()->BooksOpened(); }
const Ref<LinkedBooks>& BooksNotOpened() { return context()->BooksNotOpened(); }

void reset_books() { contexts.get().reset_books(); }

std::string inpivottable(const Ref<host::Range>& range) {
  Procedure proc("Main", "inpivottable");
  std::string source;
  (void)proc.step([&] {
    const auto app = range->Application();
    for (const auto& table : range->Worksheet()->PivotTables())
      if (app->Intersect(table->TableRange2(), range)) source = table->SourceData();
  });
  return source;
}

namespace {

class ClosedAgain {
 public:
  explicit ClosedAgain(Ref<host::Workbook> book) : book_(std::move(book)) {}
  ClosedAgain(const ClosedAgain&) = delete;
  ClosedAgain& operator=(const ClosedAgain&) = delete;
  ~ClosedAgain() {
    // An empty book that stays open does no harm.
    (void)host::restore([this] { book_->Close(false); });
  }

 private:
  Ref<host::Workbook> book_;
};

}  // namespace

void follow_hyperlink(std::string_view address) {
  const auto& app = shared_application();
  if (!app) throw NumberedFailure(91, "no spreadsheet application is at work yet");
  const auto books = app->Workbooks();
  if (books->Count() > 0) return books->Item(1)->FollowHyperlink(address);
  const auto added = books->Add();
  const ClosedAgain closed_again(added);
  added->FollowHyperlink(address);
}

}  // namespace qto::Main
