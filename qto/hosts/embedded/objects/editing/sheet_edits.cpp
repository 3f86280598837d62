#include "qto/hosts/embedded/objects/editing/sheet_edits.hpp"

#include <algorithm>
#include <unordered_map>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/cell_formula.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/link_formula.hpp"
#include "qto/hosts/embedded/objects/references/convert_reference.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {
namespace {

bool mentions(const CompiledFormula& formula, std::string_view sheet_name) {
  const formula::SyntaxTree* tree = formula.tree();
  if (!tree) return false;
  return std::any_of(tree->qualifiers.begin(), tree->qualifiers.end(), [&](const auto& qualifier) {
    return qualifier.external == 0 && qualifier.book.empty() &&
           (text::equal_fold(qualifier.sheet, sheet_name) ||
            text::equal_fold(qualifier.last_sheet, sheet_name));
  });
}

/// Gives the formulas of a book that mention a sheet their new text.
class Renaming {
 public:
  Renaming(OpenBook& open, std::string_view old_name, std::string_view new_name)
      : open_(open), old_name_(old_name), new_name_(new_name) {}

  void run() {
    for (const auto& sheet : open_.book().sheets()) rename_cells(*sheet);
    for (const auto& name : open_.book().names.all())
      if (name->refers_to && mentions(*name->refers_to, old_name_))
        name->refers_to =
            CompiledFormula::compile(renamed(*name->refers_to, *open_.book().sheets()[0], {}), {});
    for (const auto& sheet : open_.book().sheets())
      for (ChartModel& chart : sheet->charts)
        for (ChartSeries& series : chart.series) rename_series(series);
  }

 private:
  /// The formula's text in the cell, without "=", links as numbers.
  std::string renamed(const CompiledFormula& formula, const Sheet& sheet, CellPos at) {
    std::string text;
    formula.append_local(text, context_at(open_, sheet, at));
    text = rename_qualifiers(text, old_name_, new_name_);
    return number_links(std::string_view(text).substr(text.starts_with('=') ? 1 : 0), open_);
  }

  FormulaId new_formula(FormulaId id, const Sheet& sheet, CellPos pos) {
    const FormulaRecord record = open_.book().formula(id);
    if (!mentions(*record.compiled, old_name_)) return id;
    if (record.kind == FormulaKind::normal)
      return open_.formulas().intern(renamed(*record.compiled, sheet, pos), pos);
    const std::string text = renamed(*record.compiled, sheet, record.block.first);
    return record.kind == FormulaKind::array ? open_.formulas().add_array(text, record.block)
                                             : open_.formulas().add_data_table(text, record.block);
  }

  void rename_cells(Sheet& sheet) {
    std::vector<std::pair<CellPos, FormulaId>> changed;
    sheet.cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell&, FormulaId id) {
      if (id == 0) return;
      auto known = new_ids_.find(id);
      if (known == new_ids_.end()) known = new_ids_.emplace(id, new_formula(id, sheet, pos)).first;
      if (known->second != id) changed.emplace_back(pos, known->second);
    });
    for (const auto& [pos, id] : changed) sheet.cells.set_formula(pos, id);
  }

  void rename_series(ChartSeries& series) {
    for (std::string* text : {&series.name_formula, &series.category_formula,
                              &series.values_formula, &series.sizes_formula})
      *text = rename_qualifiers(*text, old_name_, new_name_);
  }

  OpenBook& open_;
  std::string_view old_name_;
  std::string_view new_name_;
  std::unordered_map<FormulaId, FormulaId> new_ids_;
};

OpenBook& book_to_edit(const Ref<host::Sheet>& sheet) {
  const auto workbook = sheet ? ref_cast<WorkbookObject>(sheet->Workbook()) : nullptr;
  if (!workbook) fail("A sheet of this application is needed");
  OpenBook& open = workbook->open();
  if (open.book().structure.enabled) fail("The structure of " + open.book().name + " is protected");
  return open;
}

Sheet& sheet_to_edit(const OpenBook& open, const Ref<host::Sheet>& sheet) {
  return *open.book().find_sheet(sheet->Name());
}

/// Rewrites the formulas, names and charts of a book that refer to a sheet by its old name.
void rename_references(OpenBook& book, std::string_view old_name, std::string_view new_name) {
  Renaming(book, old_name, new_name).run();
}

}  // namespace

void delete_sheet(const Ref<host::Sheet>& sheet) {
  OpenBook& open = book_to_edit(sheet);
  Sheet& target = sheet_to_edit(open, sheet);
  if (!another_is_visible(open.book(), target)) fail("A workbook must show one sheet at least");
  open.remove_sheet(target);
}

void rename_sheet(const Ref<host::Sheet>& sheet, std::string_view new_name) {
  OpenBook& open = book_to_edit(sheet);
  Sheet& target = sheet_to_edit(open, sheet);
  check_sheet_name(open.book(), new_name, &target);
  const std::string old_name = target.name;
  open.book().rename_sheet(target, std::string(new_name));
  rename_references(open, old_name, new_name);
  open.slot(target).stamp = next_stamp();
}

}  // namespace qto::embedded
