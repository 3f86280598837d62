// Follows a drill through its events: what is parsed, a limit on the number of items, and the
// question whether a linked book may be opened.
//
//   example_events examples/workbooks/plan.xlsx Summary C7

#include <cstdio>

#include "qto/automation/error.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"

int main(int argc, char** argv) try {
  if (argc != 4) return std::fprintf(stderr, "usage: %s BOOK SHEET CELL\n", argv[0]), 1;
  qto::embedded::Application application;
  const auto book = application.Workbooks()->Open(argv[1]);
  const auto drill = qto::make_ref<qto::DrillDown>();

  int parsed = 0;
  drill->BeforeGetPrecedents.add([&](qto::Ref<qto::ModelPart>& part, bool& cancel) {
    ++parsed;
    cancel = part->WorkSheetName() == "Scenarios";  // what lies on that sheet is not followed
  });
  drill->put_MaxItems(20);
  drill->MaxItemsExceeded.add(
      [](std::int32_t limit, std::int32_t items, bool& stop_now, std::int32_t) {
        stop_now = items >= 3 * limit;  // without an answer the drill would stop at once
        std::printf("%d items, %s\n", items, stop_now ? "enough" : "going on");
      });
  drill->AskToOpenBook.add([](qto::Ref<qto::ModelPart>& unknown, bool& open) {
    open = false;
    std::printf("not opening %s\n", unknown->WorkBookFullName().c_str());
  });

  drill->putref_StartUnderlyingObject(book->Worksheets(argv[2])->Range(argv[3]));
  drill->DrillHere();
  std::printf("%d parts looked into\n", parsed);
  return 0;
} catch (const qto::AutomationError& refusal) {
  std::fprintf(stderr, "refused: %08X\n", static_cast<unsigned>(refusal.number));
  return 1;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
