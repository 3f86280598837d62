// Prints what the reader found in a workbook, one JSON object per line: the book, its sheets with
// counts, its names. With --cells also every cell; with --time only how long opening took.

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/xlsx/open_workbook.hpp"

namespace {

using namespace qto;
using namespace qto::embedded;

std::string quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    char escape[8];
    if (c == '"' || c == '\\') {
      out.append({'\\', c});
    } else if (static_cast<unsigned char>(c) < 0x20) {
      std::snprintf(escape, sizeof escape, "\\u%04x", c);
      out.append(escape);
    } else {
      out.push_back(c);
    }
  }
  return out + '"';
}

std::string value_of(const Book& book, const Cell& cell) {
  char number[40];
  switch (cell.type()) {
    case CellType::empty:
      return "null";
    case CellType::number:
      std::snprintf(number, sizeof number, "%.17g", cell.number());
      return number;
    case CellType::text:
      return quoted(book.texts.view(cell.text()));
    case CellType::boolean:
      return cell.boolean() ? "true" : "false";
    case CellType::error:
      return "{\"e\":" + quoted(error_text(cell.error())) + "}";
  }
  return "null";
}

struct Counts {
  long formulas = 0, data_tables = 0;
  long members = 0;  ///< further cells of array formulas, as far as they have values
  long numbers = 0, texts = 0, booleans = 0, errors = 0, blanks = 0;
};

void count_value(const Cell& cell, bool member, Counts& counts) {
  if (member && !cell.is_empty()) {
    ++counts.members;
    return;
  }
  switch (cell.type()) {
    case CellType::empty:
      ++counts.blanks;
      return;
    case CellType::number:
      ++counts.numbers;
      return;
    case CellType::text:
      ++counts.texts;
      return;
    case CellType::boolean:
      ++counts.booleans;
      return;
    case CellType::error:
      ++counts.errors;
      return;
  }
}

Counts counts_of(const Book& book, const Sheet& sheet) {
  Counts counts;
  sheet.cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell& cell, FormulaId own) {
    const FormulaId id = own ? own : sheet.formula_at(pos);
    if (id == 0) return count_value(cell, false, counts);
    const FormulaRecord& record = book.formula(id);
    const bool first = record.kind == FormulaKind::normal || record.block.first == pos;
    const bool in_array = record.kind == FormulaKind::array;
    if (!first) return count_value(cell, in_array, counts);
    ++(record.kind == FormulaKind::data_table ? counts.data_tables : counts.formulas);
  });
  return counts;
}

void print_sheet(const Book& book, const Sheet& sheet) {
  static constexpr const char* kinds[] = {"worksheet", "chartsheet", "dialogsheet", "xlMacrosheet"};
  const char* state = sheet.visibility == SheetVisibility::visible  ? "visible"
                      : sheet.visibility == SheetVisibility::hidden ? "hidden"
                                                                    : "veryHidden";
  const Counts n = counts_of(book, sheet);
  std::size_t series = 0;
  for (const ChartModel& chart : sheet.charts) series += chart.series.size();
  std::printf(
      "{\"sheet\":%s,\"kind\":\"%s\",\"state\":\"%s\",\"protected\":%s,\"used\":\"%s\","
      "\"formulas\":%ld,\"datatable\":%ld,\"members\":%ld,\"numbers\":%ld,\"texts\":%ld,"
      "\"booleans\":%ld,\"errors\":%ld,\"blanks\":%ld,\"large_blocks\":%zu,"
      "\"merges\":%zu,\"charts\":%zu,\"series\":%zu,\"pivots\":%zu,\"selection\":\"%s\"}\n",
      quoted(sheet.name).c_str(), kinds[static_cast<int>(sheet.kind)], state,
      sheet.protection.enabled ? "true" : "false", address_of(sheet.cells.used()).c_str(),
      n.formulas, n.data_tables, n.members, n.numbers, n.texts, n.booleans, n.errors, n.blanks,
      sheet.large_blocks().size(), sheet.merges.size(), sheet.charts.size(), series,
      sheet.pivots.size(), address_of(sheet.selection).c_str());
}

void print_cells(const Book& book, const Sheet& sheet) {
  sheet.cells.for_each(Rect::sheet(), [&](CellPos pos, const Cell& cell, FormulaId) {
    std::string formula;
    if (const FormulaId id = sheet.formula_at(pos)) {
      const FormulaRecord& record = book.formula(id);
      const CellPos from = record.kind == FormulaKind::normal ? pos : record.block.first;
      record.compiled->append_formula(formula, {&book, &sheet, from});
    }
    std::printf("{\"at\":%s,\"cell\":\"%s\",\"value\":%s,\"formula\":%s,\"style\":%u}\n",
                quoted(sheet.name).c_str(), address_of(pos).c_str(), value_of(book, cell).c_str(),
                quoted(formula).c_str(), cell.style());
  });
}

void print_names(const Book& book) {
  for (const auto& name : book.names.all()) {
    std::string refers_to;
    const Sheet* sheet = name->sheet ? name->sheet : book.sheets().front().get();
    name->refers_to->append_formula(refers_to, {&book, sheet, CellPos{}});
    std::printf("{\"name\":%s,\"scope\":%s,\"hidden\":%s,\"refers_to\":%s}\n",
                quoted(name->name).c_str(),
                name->sheet ? quoted(name->sheet->name).c_str() : "null",
                name->hidden ? "true" : "false", quoted(refers_to).c_str());
  }
}

void print_links(const Book& book) {
  for (const auto& table : book.tables())
    std::printf("{\"table\":%s,\"on\":%s,\"range\":\"%s\",\"columns\":%zu}\n",
                quoted(table->name).c_str(), quoted(table->sheet->name).c_str(),
                address_of(table->range).c_str(), table->columns.size());
  for (const ExternalBook& external : book.externals)
    std::printf("{\"external\":%s,\"folder\":%s,\"kind\":%d,\"sheets\":%zu,\"names\":%zu}\n",
                quoted(external.name).c_str(), quoted(external.folder).c_str(),
                static_cast<int>(external.kind), external.sheets.size(), external.names.size());
  for (const auto& sheet : book.sheets()) {
    for (const PivotModel& pivot : sheet->pivots)
      std::printf("{\"pivot\":%s,\"on\":%s,\"range\":\"%s\",\"source\":%s}\n",
                  quoted(pivot.name).c_str(), quoted(sheet->name).c_str(),
                  address_of(pivot.table_range).c_str(), quoted(pivot.source).c_str());
    for (const ChartModel& chart : sheet->charts)
      for (const ChartSeries& series : chart.series)
        std::printf(
            "{\"chart\":%s,\"on\":%s,\"type\":%d,\"order\":%d,\"series\":%s,\"name\":%s,"
            "\"category\":%s,\"values\":%s}\n",
            quoted(chart.name).c_str(), quoted(sheet->name).c_str(), series.chart_type,
            series.order, quoted(series.name).c_str(), quoted(series.name_formula).c_str(),
            quoted(series.category_formula).c_str(), quoted(series.values_formula).c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const bool cells = argc == 3 && std::strcmp(argv[1], "--cells") == 0;
  const bool time_only = argc == 3 && std::strcmp(argv[1], "--time") == 0;
  if (argc != 2 && !cells && !time_only) {
    std::fprintf(stderr, "usage: dump_workbook [--cells|--time] FILE\n");
    return 1;
  }
  try {
    const auto started = std::chrono::steady_clock::now();
    const auto book = open_workbook(argv[argc - 1]);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
    if (time_only) return std::printf("seconds %.3f\n", elapsed.count()), 0;
    std::printf(
        "{\"book\":%s,\"date1904\":%s,\"sheets\":%zu,\"names\":%zu,\"formula_records\":%zu,"
        "\"styles\":%zu,\"texts\":%zu,\"all_pending\":%s,\"pending\":%zu}\n",
        quoted(book->name).c_str(), book->date1904 ? "true" : "false", book->sheets().size(),
        book->names.all().size(), book->formula_records(), book->styles.size(), book->texts.size(),
        book->all_pending() ? "true" : "false", book->pending().size());
    for (const auto& sheet : book->sheets()) print_sheet(*book, *sheet);
    print_names(*book);
    print_links(*book);
    if (cells)
      for (const auto& sheet : book->sheets()) print_cells(*book, *sheet);
  } catch (const OpenFailure& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 4;
  }
}
