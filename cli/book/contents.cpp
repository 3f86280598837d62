#include "cli/book/contents.hpp"

#include <algorithm>

#include "qto/automation/address.hpp"
#include "qto/automation/text.hpp"
#include "qto/host/host.hpp"

namespace qto::cli {
namespace {

std::string sheet_text(const host::Sheet& sheet) {
  std::string text;
  append_sheet_name(text, sheet.Name());
  return text;
}

std::string used_cells(const host::Worksheet& sheet) {
  const auto used = sheet.UsedRange();
  const bool empty = used->CellsCount() == 1 && used->value().is_empty() && !used->HasFormula();
  return empty ? "" : used->Address(false, false);
}

Contents::Chart chart_of(const host::Chart& chart, std::string item, const host::Sheet& sheet,
                         std::string name) {
  Contents::Chart out{std::move(item), sheet.Name(), std::move(name), {}};
  const auto all = chart.SeriesCollection();
  const auto items = series_items(all);
  for (std::size_t i = 0; i < all.size(); ++i)
    out.series.push_back(
        {out.item + "!" + items[i], all[i]->Name(), all[i]->Formula(), all[i]->ChartType()});
  return out;
}

void add_worksheet(Contents& contents, const host::Worksheet& sheet) {
  const std::string place = sheet_text(sheet);
  contents.sheets.push_back({sheet.Name(), false, sheet.Visible(), used_cells(sheet)});
  for (const auto& frame : sheet.ChartObjects())
    contents.charts.push_back(
        chart_of(*frame->Chart(), place + "(" + frame->Name() + ")", sheet, frame->Name()));
  for (const auto& pivot : sheet.PivotTables())
    contents.pivots.push_back({place + "!" + pivot->TableRange2()->Address(false, false),
                               pivot->Name(), pivot->SourceData()});
}

}  // namespace

std::vector<std::string> series_items(const std::vector<Ref<host::Series>>& series) {
  std::vector<std::string> names;
  for (const auto& one : series) names.push_back(one->Name());
  std::vector<std::string> items = names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto first = std::find_if(names.begin(), names.end(), [&](const auto& name) {
      return text::equal_fold(name, names[i]);
    });
    if (names[i].empty() || first != names.begin() + static_cast<std::ptrdiff_t>(i))
      items[i] = "#" + std::to_string(i + 1);
  }
  return items;
}

Contents contents_of(const Ref<host::Workbook>& book) {
  Contents contents;
  contents.book = book->Name();
  for (int i = 1; i <= book->SheetsCount(); ++i) {
    const auto sheet = book->Sheets(i);
    if (const auto worksheet = ref_cast<host::Worksheet>(sheet)) {
      add_worksheet(contents, *worksheet);
    } else if (const auto chart = ref_cast<host::Chart>(sheet)) {
      contents.sheets.push_back({sheet->Name(), true, sheet->Visible(), ""});
      contents.charts.push_back(chart_of(*chart, sheet_text(*sheet), *sheet, ""));
    }
  }
  for (const auto& name : book->AllNames())
    if (name->Visible()) contents.names.push_back({name->Name(), name->RefersTo()});
  return contents;
}

}  // namespace qto::cli
