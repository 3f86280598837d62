#include "qto/hosts/embedded/visible_panes.hpp"

#include "qto/hosts/embedded/objects/sheet_view.hpp"

namespace qto::embedded {

std::vector<Rect> visible_panes(const Ref<host::Application>& application) {
  const auto object = ref_cast<ApplicationObject>(application);
  if (!object || !object->active_book()) return {};
  const Sheet& sheet = object->active_book()->active_sheet();
  if (!sheet.is_worksheet()) return {};
  const FrozenPanes& frozen = sheet.frozen;
  std::vector<Rect> panes;
  for (const bool frozen_row : {true, false})
    for (const bool frozen_column : {true, false}) {
      if ((frozen_row && frozen.rows == 0) || (frozen_column && frozen.columns == 0)) continue;
      const CellPos cell{frozen_row ? frozen.first.row : max_rows,
                         frozen_column ? frozen.first.column : max_columns};
      panes.push_back(visible_block(*object, sheet, cell));
    }
  return panes;
}

}  // namespace qto::embedded
