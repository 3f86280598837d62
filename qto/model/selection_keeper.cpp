#include "qto/model/selection_keeper.hpp"

#include "qto/host/host.hpp"
#include "qto/host/restore.hpp"

namespace qto {

SelectionKeeper::SelectionKeeper(const Ref<host::Application>& app) : app_(app), quiet_(app) {
  remember();
}

SelectionKeeper::~SelectionKeeper() {
  for (auto place = places_.rbegin(); place != places_.rend(); ++place) go_back(*place);
}

void SelectionKeeper::go_to(const Ref<host::Range>& cell) {
  const auto sheet = cell->Worksheet();
  sheet->Workbook()->Activate();
  remember();
  sheet->Activate();
  remember();
  cell->Select();
}

void SelectionKeeper::remember() {
  if (auto sheet = app_->ActiveSheet()) places_.push_back({std::move(sheet), app_->Selection()});
}

void SelectionKeeper::go_back(const Place& place) noexcept {
  // Unless the sheet is gone: then nothing is left to go back to.
  host::restore([&] {
    place.sheet->Workbook()->Activate();
    place.sheet->Activate();
    if (const auto range = ref_cast<host::Range>(place.selection))
      range->Select();
    else if (const auto series = ref_cast<host::Series>(place.selection))
      series->Select();
    else if (const auto chart = ref_cast<host::Chart>(place.selection))
      chart->SelectChartArea();
  });
}

}  // namespace qto
