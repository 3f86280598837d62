#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/model/show_range.hpp"

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
template <class Statement>
void try_to(Statement&& run) {
  try {
    run();
  } catch (const AutomationError&) {
    throw;
  } catch (const std::exception&) {
  }
}

void unhide(const Ref<host::Range>& range, const Ref<host::Sheet>& sheet,
            const std::string& password) {
  if (!password.empty()) try_to([&] { sheet->Unprotect(password); });
  try_to([&] { range->Worksheet()->put_Visible(host::xlSheetVisible); });
  try_to([&] { range->EntireColumn()->put_Hidden(false); });
  try_to([&] { range->EntireRow()->put_Hidden(false); });
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
    ask_to_unhide(container, allowed, password);
    if (!allowed) return qtoItemHidden;
    unhide(range(), container, password);
    if (!proc.step([&] { hidden = is_hidden(range()); })) return qtoCouldNotUnhide;
    if (hidden) return qtoCouldNotUnhide;
  }
  return show_range(range()) ? qtoSelectOK : qtoNotSelectableObject;
}

/// A handler may put another range in the place of the part's own.
void ModelPart::ask_to_unhide(const Ref<host::Sheet>& sheet, bool& allowed, std::string& password) {
  const Ref<Object> own = UnderlyingObject();
  Ref<Object> hidden = own;
  Ref<Object> container = sheet;
  AskToUnhide(hidden, AddressShortLocal(), container, allowed, password);
  if (hidden == own) return;
  if (sheet_) forget_cell();
  rare().underlying = std::move(hidden);
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
    try_to([&] { sheet->put_Visible(host::xlSheetVisible); });
    if (!proc.step([&] { visible = sheet->Visible(); }) || visible != host::xlSheetVisible)
      return qtoCouldNotUnhide;
  }
  const bool done = proc.step([&] { sheet->Workbook()->Activate(); }) &&
                    proc.step([&] { sheet->Select(); }) && proc.step([&] { sheet->Activate(); }) &&
                    activate_chart(sheet) &&
                    proc.step([&] { ref_cast<host::Series>(rare().underlying)->Select(); });
  return done ? qtoSelectOK : qtoNotSelectableObject;
}

bool ModelPart::activate_chart(const Ref<host::Sheet>& sheet) {
  Procedure proc("ModelPart", "select_series");
  const std::string name = EmbeddedChartName();
  if (name.empty()) return true;
  return proc.step([&] { ref_cast<host::Worksheet>(sheet)->ChartObjects(name)->Activate(); }) &&
         proc.step([&] { sheet->Application()->ActiveChart()->SelectChartArea(); });
}

}  // namespace qto
