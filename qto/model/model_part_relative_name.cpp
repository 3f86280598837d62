#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/host/insist.hpp"
#include "qto/links/main.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"

namespace qto {
namespace {

/// Remembers what is active and selected, and puts it back however the work in between ends.
class SelectionKeeper {
 public:
  explicit SelectionKeeper(Ref<host::Application> app)
      : app_(std::move(app)), selection_(app_->Selection()), sheet_(app_->ActiveSheet()) {
    switch_settings(false);
  }
  SelectionKeeper(const SelectionKeeper&) = delete;
  SelectionKeeper& operator=(const SelectionKeeper&) = delete;
  ~SelectionKeeper() {
    // Unless the sheet is gone: then nothing is left to go back to.
    host::insist([this] { restore(); });
    switch_settings(true);
  }

 private:
  void restore() {
    if (!sheet_) return;
    sheet_->Workbook()->Activate();
    sheet_->Activate();
    if (const auto range = ref_cast<host::Range>(selection_))
      range->Select();
    else if (const auto series = ref_cast<host::Series>(selection_))
      series->Select();
  }
  void switch_settings(bool on) noexcept {
    // A host without one of these settings works all the same.
    host::insist([&] { app_->put_ScreenUpdating(on); });
    host::insist([&] { app_->put_EnableEvents(on); });
    host::insist([&] { app_->put_DisplayAlerts(on); });
  }

  Ref<host::Application> app_;
  Ref<Object> selection_;
  Ref<host::Sheet> sheet_;
};

}  // namespace

/// Reads the name with two different active cells: only a relative reference differs.
void ModelPart::check_relative_name() {
  Procedure proc("ModelPart", "check_relative_name");
  if (type_ != Type::name) return;
  (void)proc.step([&] {
    const auto& app = Main::shared_application();
    if (!app) return;
    const auto name = ref_cast<host::DefinedName>(rare().underlying);
    const SelectionKeeper keeper(app);
    const auto sheet = app->ActiveWorkbook()->Worksheets(1);
    sheet->Activate();
    sheet->Range("a1")->Select();
    const std::string first = name->RefersTo();
    sheet->Range("b2")->Select();
    const bool differs = name->RefersTo() != first;
    set(relative_name, differs);
    if (differs) read_relative_name();
  });
}

void ModelPart::read_relative_name() {
  const auto& app = Main::shared_application();
  const auto name = ref_cast<host::DefinedName>(rare().underlying);
  if (const auto& parent = rare().parent_range) {
    const auto sheet = parent->Worksheet();
    sheet->Workbook()->Activate();
    sheet->Activate();
    parent->Select();
  }
  formula_.assign(name->RefersTo());
  rare().formula_local =
      app->ReferenceStyle() == host::xlA1 ? name->RefersToLocal() : name->RefersToR1C1Local();
}

}  // namespace qto
