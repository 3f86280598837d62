#include <limits>

#include "qto/com/conversion.hpp"
#include "qto/server/host_tables/library.hpp"
#include "qto/server/host_tables/names.hpp"

namespace qto::server::host_tables {

Ref<host::Range> cell_of(host::Range& range, const std::optional<std::int32_t>& row,
                         const Variant& column) {
  if (!row && column.is_empty()) return Ref<host::Range>(&range);
  if (column.is_empty()) {
    const std::int32_t width = range.ColumnsCount(), index = *row - 1;
    const std::int32_t line = index >= 0 ? index / width : (index - width + 1) / width;
    return range.Cells(line + 1, index - line * width + 1);
  }
  std::string_view letters = column.text();
  if (const std::int32_t named = take_column(letters); named > 0 && letters.empty())
    return range.Cells(row.value_or(1), named);
  Variant number = column;
  if (convert(number, {Shape::number, ""}) != Conversion::done)
    throw CallFailure(CallError::type_mismatch, 1);
  return range.Cells(row.value_or(1), *number.get_if<std::int32_t>());
}

Ref<host::Range> corner_of(host::Worksheet& sheet, const Variant& corner, std::uint32_t argument) {
  if (const auto range = ref_cast<host::Range>(corner.object())) return range;
  if (!corner.is_text()) throw CallFailure(CallError::type_mismatch, argument);
  return sheet.Range(corner.text());
}

namespace {

using host::Range;

std::string address_of(Range& range, const std::optional<bool>& row_absolute,
                       const std::optional<bool>& column_absolute,
                       const std::optional<std::int32_t>& style,
                       const std::optional<bool>& external) {
  return range.Address(row_absolute.value_or(true), column_absolute.value_or(true),
                       style.value_or(host::xlA1), external.value_or(false));
}
std::string address_local(Range& range, const std::optional<bool>& row_absolute,
                          const std::optional<bool>& column_absolute,
                          const std::optional<std::int32_t>& style,
                          const std::optional<bool>& external) {
  return range.AddressLocal(row_absolute.value_or(true), column_absolute.value_or(true),
                            style.value_or(host::xlA1), external.value_or(false));
}
Variant count_of(Range& range) {
  const std::int64_t count = range.CellsCount();
  if (count <= std::numeric_limits<std::int32_t>::max())
    return Variant(static_cast<std::int32_t>(count));
  return Variant(static_cast<double>(count));
}
Ref<host::Worksheet> worksheet_of(Range& range) { return range.Worksheet(); }
Ref<Object> rows_of(Range& range) { return make_ref<LineList>(Ref<Range>(&range), true); }
Ref<Object> columns_of(Range& range) { return make_ref<LineList>(Ref<Range>(&range), false); }
Ref<ItemList<Range>> areas(Range& range) {
  return make_ref<ItemList<Range>>("Areas", &range, areas_of(range));
}
Ref<host::DefinedName> name_of(Range& range) {
  if (auto name = range.find_name()) return name;
  throw host::HostFailure(host::general_failure, "No name refers to exactly this range");
}
Variant hidden(Range& range) {
  const auto all = range.Hidden();
  return all ? Variant(*all) : Variant(Null());
}

/// What the cells of one block give; more than this many are not gathered at once.
constexpr std::int64_t most_cells = 1 << 22;
template <class Read>
Variant block_of(Range& range, Read&& read) {
  const Rect block = range.block();
  if (block.cells() > most_cells)
    throw host::HostFailure(host::general_failure, "The range is too large to be read at once");
  const auto sheet = range.Worksheet();
  auto all = make_ref<VariantArray>(block.rows(), block.columns());
  for (std::int32_t row = 0; row < block.rows(); ++row)
    for (std::int32_t column = 0; column < block.columns(); ++column)
      all->at(row + 1, column + 1) =
          read(*sheet, CellPos{block.first.row + row, block.first.column + column});
  return Variant(Ref<const VariantArray>(all));
}
/// The formula of a cell, or an array of those of a block.
Variant formula_of(Range& range) {
  if (range.block().is_cell()) return Variant(range.Formula());
  return block_of(range, [](host::Worksheet& sheet, CellPos pos) {
    std::string text;
    sheet.append_cell_formula(pos, text);
    return Variant(text);
  });
}
Variant plain_value(const Variant& value) {
  const Date* date = value.get_if<Date>();
  return date ? Variant(date->serial) : value;
}
/// The value with dates as their numbers.
Variant value2_of(Range& range) {
  if (range.block().is_cell()) return plain_value(range.value());
  return block_of(range, [](host::Worksheet& sheet, CellPos pos) {
    return plain_value(sheet.cell_value(pos));
  });
}
Ref<Enumerator> walk_cells(Range& range) {
  return walk_positions(
      Ref<Object>(&range), [&range] { return range.CellsCount(); },
      [&range](std::int64_t k) {
        const std::int64_t width = range.ColumnsCount();
        return Ref<Object>(range.Cells(static_cast<std::int32_t>((k - 1) / width) + 1,
                                       static_cast<std::int32_t>((k - 1) % width) + 1));
      });
}

/// What a bare call of a range reaches: its value, or one of its cells.
Variant default_of(Range& range, const std::optional<std::int32_t>& row, const Variant& column) {
  if (!row && column.is_empty()) return range.value();
  return Variant(cell_of(range, row, column));
}
void put_default(Range& range, const std::optional<std::int32_t>& row, const Variant& column,
                 const Variant& value) {
  cell_of(range, row, column)->put_value(value);
}

constexpr Member range_members[] = {
    get<&default_of>(default_id, "_Default", "RowIndex?, ColumnIndex?"),
    put<&put_default>(default_id, "_Default", "RowIndex?, ColumnIndex?, Value"),
    get<&Range::value>(27, "Value"),
    put<&Range::put_value>(27, "Value"),
    get<&address_of>(1, "Address", "RowAbsolute?, ColumnAbsolute?, ReferenceStyle?, External?"),
    get<&Range::Row>(2, "Row"),
    get<&Range::Column>(3, "Column"),
    get<&cell_of>(4, "Cells", "RowIndex?, ColumnIndex?"),
    get<&count_of>(5, "Count"),
    get<&Range::HasFormula>(6, "HasFormula"),
    get<&formula_of>(7, "Formula"),
    put<&Range::put_Formula>(7, "Formula"),
    get<&Range::FormulaLocal>(8, "FormulaLocal"),
    put<&Range::put_FormulaArray>(9, "FormulaArray"),
    get<&Range::Text>(10, "Text"),
    get<&Range::NumberFormat>(11, "NumberFormat"),
    put<&Range::put_NumberFormat>(11, "NumberFormat"),
    get<&worksheet_of>(12, "Worksheet"),
    method<&Range::Select>(13, "Select"),
    get<&application_of>(14, "Application"),
    get<&parent_of>(15, "Parent"),
    get<&rows_of>(16, "Rows"),
    get<&columns_of>(17, "Columns"),
    get<&areas>(18, "Areas"),
    get<&address_local>(19, "AddressLocal",
                        "RowAbsolute?, ColumnAbsolute?, ReferenceStyle?, External?"),
    get<&Range::FormulaR1C1Local>(20, "FormulaR1C1Local"),
    get<&value2_of>(21, "Value2"),
    get<&name_of>(22, "Name"),
    get<&Range::End>(23, "End", "Direction"),
    get<&Range::EntireRow>(24, "EntireRow"),
    get<&Range::EntireColumn>(25, "EntireColumn"),
    get<&hidden>(26, "Hidden"),
    put<&Range::put_Hidden>(26, "Hidden"),
    enumerator<&walk_cells>(enumerator_id, "NewEnum"),
};
static_assert(identifiers_fit(range_members));

}  // namespace

constinit const ClassTable range_table =
    host_class<Range>("Range", "A cell or a block of cells.", 0x1080, range_members);
constinit const ClassTable rows_table =
    host_class<LineList>("Rows", "The rows of a range.", 0x1130, list_members);
constinit const ClassTable columns_table =
    host_class<LineList>("Columns", "The columns of a range.", 0x1140, list_members);
constinit const ClassTable areas_table =
    host_class<ItemList<Range>>("Areas", "The separate blocks of a range.", 0x1150, list_members);

}  // namespace qto::server::host_tables
