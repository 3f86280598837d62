#include "qto/model/show_range.hpp"

#include <algorithm>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/model/quiet_application.hpp"

namespace qto {
namespace {

// Where the first line of a window may be put; further on scrolling line by line takes over.
constexpr std::int32_t last_scroll_row = 65'535;
constexpr std::int32_t last_scroll_column = 255;

/// `first` less half of `count`, a half going to the even neighbour.
std::int32_t centred(std::int32_t first, std::int32_t count, std::int32_t last) {
  const std::int64_t twice = std::int64_t{2} * first - count;
  const std::int64_t below = twice >> 1;  // rounds down, also below zero
  const std::int64_t line = twice % 2 == 0 ? below : below + (below % 2 == 0 ? 0 : 1);
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(line, 1, last));
}

bool meets(const Ref<host::Application>& app, const Ref<host::Pane>& pane,
           const Ref<host::Range>& range) {
  return bool(app->Intersect(pane->VisibleRange(), range));
}

void centre(const Ref<host::Application>& app, const Ref<host::Range>& range) {
  app->Goto(range, true);
  const auto window = app->ActiveWindow();
  const auto pane = window->ActivePane();
  const auto seen = pane->VisibleRange();
  window->put_ScrollColumn(centred(seen->Column(), seen->ColumnsCount(), last_scroll_column));
  window->put_ScrollRow(centred(seen->Row(), seen->RowsCount(), last_scroll_row));
  if (meets(app, pane, range)) return;
  app->Goto(range, true);
  pane->SmallScroll(1, 1);
  if (!meets(app, pane, range)) app->Goto(range, true);
}

}  // namespace

bool show_range(const Ref<host::Range>& range) {
  Procedure proc("ModelPart", "show_range");
  try {
    const auto app = range->Application();
    const QuietApplication quiet(app);
    centre(app, range);
    return true;
  } catch (const AutomationError&) {
    throw;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace qto
