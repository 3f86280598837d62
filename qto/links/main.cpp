#include "qto/links/main.hpp"

#include "qto/diagnostics/mail_report.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/follow_hyperlink.hpp"
#include "qto/links/linked_books.hpp"

namespace qto::Main {
namespace {

struct State {
  Ref<host::Application> application;
  Ref<LinkedBooks> opened = make_ref<LinkedBooks>();
  Ref<LinkedBooks> not_opened = make_ref<LinkedBooks>();
};

State& state() {
  static State instance;
  return instance;
}

}  // namespace

const Ref<host::Application>& shared_application() { return state().application; }

void set_shared_application(Ref<host::Application> application) {
  state().application = std::move(application);
  diagnostics::set_follow_hyperlink(follow_hyperlink);  // how error reports are sent
}

const Ref<LinkedBooks>& BooksOpened() { return state().opened; }
const Ref<LinkedBooks>& BooksNotOpened() { return state().not_opened; }

void reset_books() {
  state().opened = make_ref<LinkedBooks>();
  state().not_opened = make_ref<LinkedBooks>();
}

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

}  // namespace qto::Main
