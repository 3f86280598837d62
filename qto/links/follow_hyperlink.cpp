#include "qto/links/follow_hyperlink.hpp"

#include "qto/automation/error.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"

namespace qto::Main {
namespace {

class ClosedAgain {
 public:
  explicit ClosedAgain(Ref<host::Workbook> book) : book_(std::move(book)) {}
  ClosedAgain(const ClosedAgain&) = delete;
  ClosedAgain& operator=(const ClosedAgain&) = delete;
  ~ClosedAgain() {
    try {
      book_->Close(false);
    } catch (const std::exception&) {
      // An empty book that stays open does no harm.
    }
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
