#include <algorithm>

#include "qto/server/host_tables/library.hpp"
#include "qto/server/host_tables/names.hpp"

namespace qto::server::host_tables {
namespace {

using host::Chart, host::ChartObject, host::PivotTable, host::Range, host::Series, host::Sheet,
    host::Worksheet;

Ref<Range> cells_of(Worksheet& sheet, const std::optional<std::int32_t>& row,
                    const Variant& column) {
  return cell_of(*sheet.Block(Rect::sheet()), row, column);
}
Ref<Object> rows_of_sheet(Worksheet& sheet) {
  return make_ref<LineList>(sheet.Block(Rect::sheet()), true);
}
Ref<Object> columns_of_sheet(Worksheet& sheet) {
  return make_ref<LineList>(sheet.Block(Rect::sheet()), false);
}
/// The range of an address, or the block that has two cells as its corners.
Ref<Range> range_of(Worksheet& sheet, const Variant& first, const Variant& second) {
  const Ref<Range> from = corner_of(sheet, first, 0);
  if (second.is_empty()) return from;
  const Rect a = from->block(), b = corner_of(sheet, second, 1)->block();
  return sheet.Block(
      {{std::min(a.first.row, b.first.row), std::min(a.first.column, b.first.column)},
       {std::max(a.last.row, b.last.row), std::max(a.last.column, b.last.column)}});
}
Ref<NameList> names_of_sheet(Worksheet& sheet) {
  return make_ref<NameList>(Ref<Worksheet>(&sheet));
}
Ref<ItemList<PivotTable>> pivots_of(Worksheet& sheet) {
  return make_ref<ItemList<PivotTable>>("PivotTables", &sheet, sheet.PivotTables());
}
Ref<ItemList<ChartObject>> charts_of(Worksheet& sheet) {
  return make_ref<ItemList<ChartObject>>("ChartObjects", &sheet, sheet.ChartObjects());
}
CellPos cell_at(std::int32_t row, std::int32_t column) {
  const CellPos pos{row, column};
  if (!pos.on_grid()) throw host::HostFailure(host::general_failure, "The cell is not on the grid");
  return pos;
}
Variant value_in_cell(Worksheet& sheet, const std::string& piece, std::int32_t row,
                      std::int32_t column) {
  return sheet.value_in_cell(cell_at(row, column), piece);
}
Ref<Range> range_in_cell(Worksheet& sheet, const std::string& piece, std::int32_t row,
                         std::int32_t column) {
  return sheet.range_in_cell(cell_at(row, column), piece);
}

constexpr Member worksheet_members[] = {
    get<&Sheet::Name>(1, "Name"),
    get<&Sheet::Index>(2, "Index"),
    get<&range_of>(3, "Range", "Cell1, Cell2?"),
    get<&cells_of>(4, "Cells", "RowIndex?, ColumnIndex?"),
    get<&Worksheet::UsedRange>(5, "UsedRange"),
    method<&Worksheet::Evaluate>(6, "Evaluate", "Name"),
    get<&Sheet::Visible>(7, "Visible"),
    put<&Sheet::put_Visible>(7, "Visible"),
    method<&Sheet::Activate>(8, "Activate"),
    method<&Sheet::Select>(9, "Select"),
    method<&Sheet::Unprotect>(10, "Unprotect", "Password?"),
    get<&application_of>(11, "Application"),
    get<&parent_of>(12, "Parent"),
    get<&rows_of_sheet>(13, "Rows"),
    get<&columns_of_sheet>(14, "Columns"),
    get<&names_of_sheet>(15, "Names"),
    get<&Worksheet::CircularReference>(16, "CircularReference"),
    get<&pivots_of>(17, "PivotTables"),
    get<&charts_of>(18, "ChartObjects"),
    method<&value_in_cell>(19, "ValueInCell", "Name, RowIndex, ColumnIndex"),
    method<&range_in_cell>(20, "RangeInCell", "Name, RowIndex, ColumnIndex"),
};
static_assert(identifiers_fit(worksheet_members));

Ref<ItemList<Series>> series_of(Chart& chart) {
  return make_ref<ItemList<Series>>("SeriesCollection", &chart, chart.SeriesCollection());
}
Ref<ChartArea> area_of(Chart& chart) { return make_ref<ChartArea>(Ref<Chart>(&chart)); }

constexpr Member chart_members[] = {
    get<&Sheet::Name>(1, "Name"),
    get<&Sheet::Index>(2, "Index"),
    method<&Sheet::Activate>(3, "Activate"),
    method<&Sheet::Select>(4, "Select"),
    get<&application_of>(5, "Application"),
    get<&parent_of>(6, "Parent"),
    get<&Sheet::Visible>(7, "Visible"),
    put<&Sheet::put_Visible>(7, "Visible"),
    method<&Sheet::Unprotect>(8, "Unprotect", "Password?"),
    get<&series_of>(9, "SeriesCollection"),
    get<&area_of>(10, "ChartArea"),
};
static_assert(identifiers_fit(chart_members));

constexpr Member chart_area_members[] = {
    method<&ChartArea::Select>(1, "Select"),
    get<&ChartArea::Application>(2, "Application"),
    get<&ChartArea::Parent>(3, "Parent"),
};
static_assert(identifiers_fit(chart_area_members));

constexpr Member chart_object_members[] = {
    get<&ChartObject::Name>(1, "Name"),
    get<&ChartObject::Chart>(2, "Chart"),
    method<&ChartObject::Activate>(3, "Activate"),
    get<&application_of>(4, "Application"),
    get<&parent_of>(5, "Parent"),
};
static_assert(identifiers_fit(chart_object_members));

constexpr Member series_members[] = {
    get<&Series::Name>(1, "Name"),
    get<&Series::Formula>(2, "Formula"),
    get<&Series::FormulaLocal>(3, "FormulaLocal"),
    get<&Series::ChartType>(4, "ChartType"),
    method<&Series::Select>(5, "Select"),
    get<&application_of>(6, "Application"),
    get<&parent_of>(7, "Parent"),
    get<&Series::FormulaR1C1Local>(8, "FormulaR1C1Local"),
};
static_assert(identifiers_fit(series_members));

constexpr Member pivot_members[] = {
    get<&PivotTable::Name>(1, "Name"),
    get<&PivotTable::TableRange2>(2, "TableRange2"),
    get<&PivotTable::SourceData>(3, "SourceData"),
    get<&application_of>(4, "Application"),
    get<&parent_of>(5, "Parent"),
};
static_assert(identifiers_fit(pivot_members));

}  // namespace

constinit const ClassTable worksheet_table =
    host_class<Worksheet>("Worksheet", "One worksheet.", 0x1070, worksheet_members);
constinit const ClassTable chart_table =
    host_class<Chart>("Chart", "A chart.", 0x10A0, chart_members);
constinit const ClassTable series_table =
    host_class<Series>("Series", "A data series of a chart.", 0x10B0, series_members);
constinit const ClassTable chart_object_table = host_class<ChartObject>(
    "ChartObject", "What holds a chart on a worksheet.", 0x10C0, chart_object_members);
constinit const ClassTable chart_objects_table = host_class<ItemList<ChartObject>>(
    "ChartObjects", "The charts on a worksheet.", 0x10D0, list_members);
constinit const ClassTable series_collection_table = host_class<ItemList<Series>>(
    "SeriesCollection", "The data series of a chart.", 0x10E0, list_members);
constinit const ClassTable chart_area_table =
    host_class<ChartArea>("ChartArea", "The whole of a chart.", 0x10F0, chart_area_members);
constinit const ClassTable pivot_table_table =
    host_class<PivotTable>("PivotTable", "A pivot table.", 0x1100, pivot_members);
constinit const ClassTable pivot_tables_table = host_class<ItemList<PivotTable>>(
    "PivotTables", "The pivot tables of a worksheet.", 0x1110, list_members);

}  // namespace qto::server::host_tables
