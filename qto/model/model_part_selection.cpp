#include <algorithm>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/model/selection_keeper.hpp"

namespace qto {
namespace {

/// Lines of which only some are hidden do not count as hidden.
bool is_hidden(const Ref<host::Range>& range) {
  if (!range) throw NumberedFailure(91, "there is no range to select");
  return range->EntireRow()->Hidden().value_or(false) ||
         range->EntireColumn()->Hidden().value_or(false) ||
         range->Worksheet()->Visible() != host::xlSheetVisible;
}

/// What the host refuses shows in what is still hidden afterwards.
void unhide(const Ref<host::Range>& range, const Ref<host::Sheet>& sheet,
            const std::string& password) {
  if (!password.empty()) (void)host::tried([&] { sheet->Unprotect(password); });
  (void)host::tried([&] { range->Worksheet()->put_Visible(host::xlSheetVisible); });
  (void)host::tried([&] { range->EntireColumn()->put_Hidden(false); });
  (void)host::tried([&] { range->EntireRow()->put_Hidden(false); });
}

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

/// Brings a range into the middle of the window and selects it; false when the host refuses.
bool show_range(const Ref<host::Range>& range) {
  Procedure proc("ModelPart", "show_range");
  return host::tried([&] {
    const auto app = range->Application();
    const QuietApplication quiet(app);
    centre(app, range);
  });
}

}  // namespace

qtoReasonNotSelect ModelPart::SelectItem() {
  Procedure proc("ModelPart", "SelectItem");
  check_still_exists();
  const auto book = Workbook();
  if (!book || !book->exists()) return qtoBookNotOpen;
  if (IsUnknown()) return qtoNotSelectableObject;
  switch (type_) {
    case Type::range:
    case Type::pivot_table:
      return select_range();
    case Type::series:
      return select_series();
    default:
      return qtoNotSelectableObject;
  }
}

qtoReasonNotSelect ModelPart::select_range() {
  Procedure proc("ModelPart", "select_range");
  bool hidden = false;
  if (!proc.step([&] { hidden = is_hidden(range()); })) return qtoNotSelectableObject;
  if (hidden) {
    Ref<host::Sheet> container;
    if (!proc.step([&] { container = Workbook()->Sheets(WorkSheetName()); }))
      return qtoNotSelectableObject;
    bool allowed = false;
    std::string password;
    const Ref<Object> answer = ask_to_unhide(container, allowed, password);
    if (!proc.step([&] { take_answer(answer); })) return qtoNotSelectableObject;
    if (!allowed) return qtoItemHidden;
    unhide(range(), container, password);
    if (!proc.step([&] { hidden = is_hidden(range()); })) return qtoCouldNotUnhide;
    if (hidden) return qtoCouldNotUnhide;
  }
  return show_range(range()) ? qtoSelectOK : qtoNotSelectableObject;
}

Ref<Object> ModelPart::ask_to_unhide(const Ref<host::Sheet>& sheet, bool& allowed,
                                     std::string& password) {
  Ref<Object> hidden = UnderlyingObject();
  Ref<Object> container = sheet;
  AskToUnhide(hidden, AddressShortLocal(), container, allowed, password);
  return hidden;
}

/// A handler may put another range in the place of the part's own.
void ModelPart::take_answer(const Ref<Object>& hidden) {
  if (hidden == UnderlyingObject()) return;
  if (!ref_cast<host::Range>(hidden))
    throw NumberedFailure(13, "Type mismatch: the answer to AskToUnhide is no range");
  if (sheet_) forget_cell();
  rare().underlying = hidden;
}

qtoReasonNotSelect ModelPart::select_series() {
  Procedure proc("ModelPart", "select_series");
  Ref<host::Sheet> sheet;
  std::int32_t visible = host::xlSheetVisible;
  if (!proc.step([&] { sheet = Workbook()->Sheets(WorkSheetName()); }) ||
      !proc.step([&] { visible = sheet->Visible(); }))
    return qtoNotSelectableObject;
  if (visible != host::xlSheetVisible) {
    Ref<Object> hidden = sheet;
    Ref<Object> container = sheet;
    bool allowed = false;
    std::string password;
    std::string name;
    if (!proc.step([&] { name = sheet->Name(); })) return qtoNotSelectableObject;
    AskToUnhide(hidden, name, container, allowed, password);
    if (!allowed) return qtoItemHidden;
    (void)host::tried([&] { sheet->put_Visible(host::xlSheetVisible); });
    if (!proc.step([&] { visible = sheet->Visible(); }) || visible != host::xlSheetVisible)
      return qtoCouldNotUnhide;
  }
  const auto series = ref_cast<host::Series>(rare().underlying);
  const bool done = proc.step([&] { sheet->Workbook()->Activate(); }) &&
                    proc.step([&] { sheet->Select(); }) && proc.step([&] { sheet->Activate(); }) &&
                    activate_chart(sheet) && series && proc.step([&] { series->Select(); });
  return done ? qtoSelectOK : qtoNotSelectableObject;
}

bool ModelPart::activate_chart(const Ref<host::Sheet>& sheet) {
  Procedure proc("ModelPart", "select_series");
  const std::string name = EmbeddedChartName();
  if (name.empty()) return true;
  const auto worksheet = ref_cast<host::Worksheet>(sheet);
  return worksheet && proc.step([&] { worksheet->ChartObjects(name)->Activate(); }) &&
         proc.step([&] { sheet->Application()->ActiveChart()->SelectChartArea(); });
}

}  // namespace qto
