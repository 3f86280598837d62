#include "cli/book/item.hpp"

#include <fmt/format.h>

#include <vector>

#include "cli/asking/nearest.hpp"
#include "cli/book/contents.hpp"
#include "cli/book/item_text.hpp"
#include "cli/output/part_text.hpp"
#include "qto/automation/text.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"

namespace qto::cli {
namespace {

/// Values of more cells are not read into one array.
constexpr std::int64_t most_cells = 5'000'000;

std::vector<std::string> sheet_names(const host::Workbook& book) {
  std::vector<std::string> names;
  for (int i = 1; i <= book.SheetsCount(); ++i) {
    names.emplace_back();
    append_sheet_name(names.back(), book.Sheets(i)->Name());
  }
  return names;
}

Ref<host::Worksheet> first_worksheet(const host::Workbook& book) {
  if (book.WorksheetsCount() == 0)
    throw ItemError(book.Name() + " holds no worksheet, only chart sheets");
  return book.Worksheets(1);
}

Item series_of(const host::Chart& chart, const std::string& place, const std::string& name) {
  const auto all = chart.SeriesCollection();
  const auto names = series_items(all);
  for (std::size_t i = 0; i < all.size(); ++i)
    if (text::equal_fold(names[i], name)) return {all[i], "Series", nullptr};
  throw ItemError(place + " has no series '" + name + "'" + suggestion(name, names, "series are"));
}

Item series_on(const host::Worksheet& sheet, const std::string& chart, const std::string& name) {
  std::vector<std::string> names;
  for (const auto& object : sheet.ChartObjects()) {
    names.push_back(object->Name());
    if (text::equal_fold(names.back(), chart))
      return series_of(*object->Chart(), sheet.Name() + "(" + names.back() + ")", name);
  }
  throw ItemError("sheet " + sheet.Name() + " has no chart '" + chart + "'" +
                  suggestion(chart, names, "charts are"));
}

/// Names in the form in which they are written as an item.
std::vector<std::string> written_names(const host::Workbook& book) {
  std::vector<std::string> names;
  for (const auto& name : book.AllNames())
    if (name->Visible()) names.push_back(name->Name());
  return names;
}

Item name_item(const Ref<host::DefinedName>& name, const Ref<host::Worksheet>& sheet) {
  return {name, "Name", sheet->Cells(1, 1)};
}

[[noreturn]] void no_such_name(const host::Workbook& book, const std::string& name) {
  throw ItemError("'" + name + "' is neither a cell address nor a name of " + book.Name() +
                  suggestion(name, written_names(book), "names are"));
}

Item name_on(const host::Workbook& book, const Ref<host::Worksheet>& sheet,
             const std::string& name) {
  if (const auto own = sheet->find_name(name)) return name_item(own, sheet);
  if (const auto shared = book.find_name(name)) return name_item(shared, sheet);
  no_such_name(book, name);
}

/// A name without a sheet: the book's, or that of the one sheet which has it.
Item name_anywhere(const host::Workbook& book, const std::string& name) {
  if (const auto shared = book.find_name(name)) return name_item(shared, first_worksheet(book));
  Item found;
  std::string places;
  for (int i = 1; i <= book.WorksheetsCount(); ++i) {
    const auto sheet = book.Worksheets(i);
    const auto own = sheet->find_name(name);
    if (!own) continue;
    places += (found.object ? ", " : "") + own->Name();
    if (!found.object)
      found = name_item(own, sheet);
    else
      found.type = "";
  }
  if (!found.object) no_such_name(book, name);
  if (found.type.empty())
    throw ItemError("several sheets have a name '" + name + "': write one of " + places);
  return found;
}

Item on_worksheet(const host::Workbook& book, const Ref<host::Worksheet>& sheet,
                  const ItemText& text) {
  const auto range = sheet->find_range(text.rest);
  if (!range)
    return text.has_sheet ? name_on(book, sheet, text.rest) : name_anywhere(book, text.rest);
  if (range->CellsCount() > most_cells)
    throw ItemError(fmt::format("{} has {} cells; at most {} are read at once", text.rest,
                                grouped(range->CellsCount()), grouped(most_cells)));
  return {range, "Range", nullptr};
}

/// "Report(Chart 1)" without apostrophes around the sheet; sheets may hold parentheses themselves.
bool split_chart(const host::Workbook& book, ItemText& text, Ref<host::Worksheet>& sheet) {
  if (!text.sheet.ends_with(')')) return false;
  for (std::size_t at = text.sheet.find('('); at != std::string::npos;
       at = text.sheet.find('(', at + 1)) {
    std::string name = text.sheet.substr(0, at);
    if (name.size() > 2 && name.front() == '\'' && name.back() == '\'')
      name = name.substr(1, name.size() - 2);
    sheet = book.find_worksheet(name);
    if (!sheet) continue;
    text.chart = text.sheet.substr(at + 1, text.sheet.size() - at - 2);
    return true;
  }
  return false;
}

Ref<host::Range> cells_of_name(const host::DefinedName& name, const host::Range& seen_from) {
  return ref_cast<host::Range>(seen_from.Worksheet()->Evaluate(name.RefersTo()).object());
}

/// What a relative name refers to depends on the active cell.
bool is_relative(const host::Workbook& book, const host::DefinedName& name) {
  int position = 1;  // of a worksheet that shows: no cell of a hidden one can be active
  while (position < book.WorksheetsCount() &&
         book.Worksheets(position)->Visible() != host::xlSheetVisible)
    ++position;
  const auto sheet = book.Worksheets(position);
  if (sheet->Visible() != host::xlSheetVisible) return false;
  sheet->Activate();
  sheet->Cells(1, 1)->Select();
  const std::string first = name.RefersTo();
  sheet->Cells(2, 2)->Select();
  return name.RefersTo() != first;
}

/// The cell itself; of several those that hold formulas.
std::vector<Start> starts_in(const Ref<host::Range>& range, const std::string& text) {
  if (range->CellsCount() == 1) return {{range, text}};
  const auto sheet = range->Worksheet();
  std::string prefix;
  append_sheet_name(prefix, sheet->Name());
  std::vector<Start> starts;
  if (const auto used = range->block().intersect(sheet->UsedRange()->block()))
    for (std::int32_t row = used->first.row; row <= used->last.row; ++row)
      for (std::int32_t column = used->first.column; column <= used->last.column; ++column)
        if (const auto cell = sheet->Cells(row, column); cell->HasFormula())
          starts.push_back({cell, prefix + "!" + cell->Address(false, false)});
  if (starts.empty())
    throw ItemError(text + " holds no formula, so nothing feeds it. Start from cells that do");
  return starts;
}

}  // namespace

Item find_item(const Ref<host::Workbook>& book, std::string_view text) {
  ItemText item = split_item(text);
  if (!item.has_sheet) return on_worksheet(*book, first_worksheet(*book), item);
  if (item.chart.empty()) {
    const auto found = book->find_sheet(item.sheet);
    if (const auto sheet = ref_cast<host::Worksheet>(found))
      return on_worksheet(*book, sheet, item);
    if (const auto chart = ref_cast<host::Chart>(found))
      return series_of(*chart, "chart sheet " + chart->Name(), item.rest);
  }
  auto sheet = book->find_worksheet(item.sheet);
  if (!item.chart.empty() ? bool(sheet) : split_chart(*book, item, sheet))
    return series_on(*sheet, item.chart, item.rest);
  throw ItemError(book->Name() + " has no sheet '" + item.sheet + "'" +
                  suggestion(item.sheet, sheet_names(*book), "sheets are"));
}

Item find_shown(const Ref<host::Workbook>& book, std::string_view text) {
  const Item item = find_item(book, text);
  if (item.type != "Name") return item;
  const auto name = ref_cast<host::DefinedName>(item.object);
  const std::string what = name->Name() + " stands for " + name->RefersTo().substr(1);
  if (is_relative(*book, *name))
    throw ItemError(name->Name() +
                    " is a relative name: which cells it means depends on the cell " +
                    "that uses it. Show one of these");
  const auto cells = cells_of_name(*name, *item.seen_from);
  if (!cells) throw ItemError(what + ", which is no cell that could be shown");
  return {cells, "Range", nullptr};
}

bool is_pivot_cell(const Item& item) {
  const auto cell = ref_cast<host::Range>(item.object);
  return item.type == "Range" && cell->CellsCount() == 1 && !cell->HasFormula() &&
         !Main::inpivottable(cell).empty();
}

std::vector<Start> find_starts(const Ref<host::Workbook>& book, const std::string& text) {
  const Item item = find_item(book, text);
  if (item.type == "Range") return starts_in(ref_cast<host::Range>(item.object), text);
  if (item.type != "Name") return {{item.object, text}};
  const auto name = ref_cast<host::DefinedName>(item.object);
  const auto cells = cells_of_name(*name, *item.seen_from);
  const std::string what = name->Name() + " stands for " + name->RefersTo().substr(1);
  if (!cells) throw ItemError(what + ", which is no cell; START is a cell");
  if (is_relative(*book, *name))
    throw ItemError(name->Name() + " is a relative name: which cell it means depends on the cell " +
                    "that uses it. Start from a cell that does");
  return starts_in(cells, what);
}

}  // namespace qto::cli
