#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/model/selection_keeper.hpp"

namespace qto {
namespace {

bool shows(const host::Sheet& sheet) { return sheet.Visible() == host::xlSheetVisible; }

/// The first worksheet, or when that is hidden, and so cannot be activated, the first that shows.
Ref<host::Worksheet> sheet_to_stand_on(const host::Workbook& book) {
  for (int i = 1; i <= book.WorksheetsCount(); ++i)
    if (auto sheet = book.Worksheets(i); shows(*sheet)) return sheet;
  return book.Worksheets(1);
}

/// On a hidden sheet no cell can be active; the cell at the same place of a sheet that shows sees
/// what a relative name refers to just as well.
Ref<host::Range> cell_to_stand_on(const Ref<host::Range>& parent) {
  const auto sheet = parent->Worksheet();
  if (shows(*sheet)) return parent;
  return sheet_to_stand_on(*sheet->Workbook())->Block(parent->block());
}

}  // namespace

/// Reads the name with two different active cells: only a relative reference differs.
void ModelPart::check_relative_name() {
  Procedure proc("ModelPart", "check_relative_name");
  if (type_ != Type::name) return;
  (void)proc.step([&] {
    const auto app = application();
    if (!app) return;
    const auto name = ref_cast<host::DefinedName>(rare().underlying);
    SelectionKeeper selection(app);
    const auto sheet = sheet_to_stand_on(*app->ActiveWorkbook());
    selection.go_to(sheet->Range("a1"));
    const std::string first = name->RefersTo();
    selection.go_to(sheet->Range("b2"));
    const bool differs = name->RefersTo() != first;
    set(relative_name, differs);
    if (!differs) return;
    if (const auto& parent = rare().parent_range) selection.go_to(cell_to_stand_on(parent));
    formula_.assign(name->RefersTo());
    rare().formula_local =
        app->ReferenceStyle() == host::xlA1 ? name->RefersToLocal() : name->RefersToR1C1Local();
  });
}

}  // namespace qto
