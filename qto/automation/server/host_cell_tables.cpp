#include <limits>

#include "qto/automation/server/host_names.hpp"
#include "qto/automation/server/host_tables.hpp"

namespace qto::server {
namespace {

using host::Chart, host::DefinedName, host::Range, host::Series, host::Sheet, host::Worksheet;

Ref<Object> application_of(host::HostObject& object) { return object.Application(); }
Ref<Object> parent_of(host::HostObject& object) { return object.Parent(); }

constexpr Member worksheet_members[] = {
    get<&Sheet::Name>(1, "Name"),
    get<&Sheet::Index>(2, "Index"),
    get<&Worksheet::Range>(3, "Range", "Cell1"),
    get<&Worksheet::Cells>(4, "Cells", "RowIndex, ColumnIndex"),
    get<&Worksheet::UsedRange>(5, "UsedRange"),
    method<&Worksheet::Evaluate>(6, "Evaluate", "Name"),
    get<&Sheet::Visible>(7, "Visible"),
    put<&Sheet::put_Visible>(7, "Visible"),
    method<&Sheet::Activate>(8, "Activate"),
    method<&Sheet::Select>(9, "Select"),
    method<&Sheet::Unprotect>(10, "Unprotect", "Password?"),
    get<&application_of>(11, "Application"),
    get<&parent_of>(12, "Parent"),
};
static_assert(identifiers_fit(worksheet_members));

std::string address_of(Range& range, const std::optional<bool>& row_absolute,
                       const std::optional<bool>& column_absolute,
                       const std::optional<std::int32_t>& style,
                       const std::optional<bool>& external) {
  return range.Address(row_absolute.value_or(true), column_absolute.value_or(true),
                       style.value_or(host::xlA1), external.value_or(false));
}
Variant count_of(Range& range) {
  const std::int64_t count = range.CellsCount();
  if (count <= std::numeric_limits<std::int32_t>::max())
    return Variant(static_cast<std::int32_t>(count));
  return Variant(static_cast<double>(count));
}
Ref<host::Worksheet> worksheet_of(Range& range) { return range.Worksheet(); }

constexpr Member range_members[] = {
    get<&Range::value>(default_id, "Value"),
    put<&Range::put_value>(default_id, "Value"),
    get<&address_of>(1, "Address", "RowAbsolute?, ColumnAbsolute?, ReferenceStyle?, External?"),
    get<&Range::Row>(2, "Row"),
    get<&Range::Column>(3, "Column"),
    get<&Range::Cells>(4, "Cells", "RowIndex, ColumnIndex"),
    get<&count_of>(5, "Count"),
    get<&Range::HasFormula>(6, "HasFormula"),
    get<&Range::Formula>(7, "Formula"),
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
};
static_assert(identifiers_fit(range_members));

constexpr Member name_members[] = {
    get<&DefinedName::Name>(1, "Name"),     get<&DefinedName::RefersTo>(2, "RefersTo"),
    get<&DefinedName::Index>(3, "Index"),   get<&DefinedName::Visible>(4, "Visible"),
    get<&application_of>(5, "Application"), get<&parent_of>(6, "Parent"),
};
static_assert(identifiers_fit(name_members));

constexpr Member chart_members[] = {
    get<&Sheet::Name>(1, "Name"),
    get<&Sheet::Index>(2, "Index"),
    method<&Sheet::Activate>(3, "Activate"),
    method<&Sheet::Select>(4, "Select"),
    get<&application_of>(5, "Application"),
    get<&parent_of>(6, "Parent"),
};
static_assert(identifiers_fit(chart_members));

constexpr Member series_members[] = {
    get<&Series::Name>(1, "Name"),
    get<&Series::Formula>(2, "Formula"),
    get<&Series::FormulaLocal>(3, "FormulaLocal"),
    get<&Series::ChartType>(4, "ChartType"),
    method<&Series::Select>(5, "Select"),
    get<&application_of>(6, "Application"),
    get<&parent_of>(7, "Parent"),
};
static_assert(identifiers_fit(series_members));

}  // namespace

constinit const ClassTable worksheet_table{
    "Worksheet", "One worksheet.", own_guid(0x1071), own_guid(0x1072), {}, worksheet_members,
    {},          nullptr};
constinit const ClassTable range_table{"Range",
                                       "A cell or a block of cells.",
                                       own_guid(0x1081),
                                       own_guid(0x1082),
                                       {},
                                       range_members,
                                       {},
                                       nullptr};
constinit const ClassTable name_table{
    "Name", "A defined name.", own_guid(0x1091), own_guid(0x1092), {}, name_members, {}, nullptr};
constinit const ClassTable chart_table{
    "Chart", "A chart.", own_guid(0x10A1), own_guid(0x10A2), {}, chart_members, {}, nullptr};
constinit const ClassTable series_table{"Series",
                                        "A data series of a chart.",
                                        own_guid(0x10B1),
                                        own_guid(0x10B2),
                                        {},
                                        series_members,
                                        {},
                                        nullptr};

}  // namespace qto::server
