#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/engine/drill_down.hpp"
#include "qto/engine/memory_status.hpp"
#include "qto/host/host.hpp"
#include "qto/host/insist.hpp"
#include "qto/links/main.hpp"

namespace qto {

void DrillDown::DrillHere() {
  Procedure proc("DrillDown", "DrillHere");
  set_up();
  circularity_guard_ = maximum_depth_ == 0 && !reads_exactly();
  if (circularity_guard_) refuse_circular_start();
  if (maximum_depth_ != 0 && reads_exactly())
    drill_by_distance(start_part_);
  else
    drill_this_cell(start_part_);
  parts_analysed_ = nullptr;
}

void DrillDown::FindInputs() {
  Procedure proc("DrillDown", "FindInputs");
  set_up();
  circularity_guard_ = !reads_exactly();
  if (circularity_guard_) refuse_circular_start();
  input_cells_ = make_ref<ModelParts>();
  drill_to_inputs(start_part_);
  parts_analysed_ = nullptr;
}

void DrillDown::TraceError() {
  Procedure proc("DrillDown", "TraceError");
  set_up();
  circularity_guard_ = !reads_exactly();
  if (circularity_guard_) refuse_circular_start();
  error_cells_ = make_ref<ModelParts>();
  drill_to_errors(start_part_);
  // An error that goes round in a circle begins nowhere else.
  if (error_cells_->size() == 0)
    circles_->for_each([this](ModelPart& part) {
      Ref<ModelPart> closing(&part);
      add_to(*error_cells_, closing);
    });
  parts_analysed_ = nullptr;
}

void DrillDown::set_up() {
  Procedure proc("DrillDown", "set_up");
  // From an event of this drill: its collections are in use.
  if (current_depth_ > 0) throw AutomationError(ErrorNumber::out_of_range);
  static std::uint64_t drills = 0;
  drill_number_ = ++drills;
  parts_analysed_ = make_ref<ModelParts>();
  exceeded_ = false;
  met_cycle_ = false;
  input_cells_ = nullptr;
  error_cells_ = nullptr;
  opaque_cells_ = make_ref<ModelParts>();
  circles_ = make_ref<ModelParts>();
  if (!start_workbook_) throw AutomationError(ErrorNumber::wrong_object);
  remove_row_and_column_labels(start_workbook_);
}

bool DrillDown::reads_exactly() const noexcept {
  return options_ && options_->settings().reading == qtoReadExact;
}

void DrillDown::refuse_circular_start() {
  if (contains_circular_reference(start_workbook_))
    throw AutomationError(ErrorNumber::circular_reference);
}

bool DrillDown::contains_circular_reference(const Ref<host::Workbook>& workbook) {
  Procedure proc("DrillDown", "contains_circular_reference");
  bool found = false;
  (void)proc.step([&] {
    for (int position = 1; position <= workbook->WorksheetsCount(); ++position)
      if (workbook->Worksheets(position)->CircularReference()) found = true;
  });
  return found;
}

namespace {

/// Puts the alerts back as they were, however the work in between ends.
class AlertsKeeper {
 public:
  AlertsKeeper(host::Application& app, bool alerts) : app_(app), alerts_(alerts) {}
  AlertsKeeper(const AlertsKeeper&) = delete;
  AlertsKeeper& operator=(const AlertsKeeper&) = delete;
  ~AlertsKeeper() {
    host::insist([this] { app_.put_DisplayAlerts(alerts_); });
  }

 private:
  host::Application& app_;
  const bool alerts_;
};

}  // namespace

void DrillDown::remove_row_and_column_labels(const Ref<host::Workbook>& workbook) {
  Procedure proc("DrillDown", "remove_row_and_column_labels");
  (void)proc.step([&] {
    if (!workbook->AcceptLabelsInFormulas()) return;
    const auto app = workbook->Application();
    const bool alerts = app->DisplayAlerts();
    RemoveRowAndColumnLabels(workbook);
    const AlertsKeeper keeper(*app, alerts);
    app->put_DisplayAlerts(false);
    workbook->put_AcceptLabelsInFormulas(false);
  });
}

void DrillDown::check_max_items(std::int32_t count) {
  if (maximum_items_ == 0 || exceeded_ || count < next_item_threshold_) return;
  Procedure proc("DrillDown", "check_max_items");
  exceeded_ = true;
  MaxItemsExceeded(maximum_items_, count, exceeded_,
                   saturated(memory_baseline_ - available_memory()));
  if (!exceeded_) next_item_threshold_ += maximum_items_;
}

}  // namespace qto
