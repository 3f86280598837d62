#pragma once

#include <functional>

#include <optional>
#include "qto/server/binding/members.hpp"
#include "qto/server/host_tables/lists.hpp"

/// The host's classes by the names that clients know, and what their tables share.
namespace qto::server {
namespace host_tables {
struct Surface;
}

template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Application> =
    "Application";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Workbooks> =
    "Workbooks";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Workbook> = "Workbook";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Worksheet> =
    "Worksheet";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Range> = "Range";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::DefinedName> = "Name";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Chart> = "Chart";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::ChartObject> =
    "ChartObject";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Series> = "Series";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::PivotTable> =
    "PivotTable";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Window> = "Window";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::Pane> = "Pane";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host::WorksheetFunction> =
    "WorksheetFunction";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host_tables::NameList> =
    "Names";
template <>
inline constexpr std::string_view
    boundary_name<host_tables::Surface, host_tables::ItemList<host::Range>> = "Areas";
template <>
inline constexpr std::string_view
    boundary_name<host_tables::Surface, host_tables::ItemList<host::Series>> = "SeriesCollection";
template <>
inline constexpr std::string_view
    boundary_name<host_tables::Surface, host_tables::ItemList<host::ChartObject>> = "ChartObjects";
template <>
inline constexpr std::string_view
    boundary_name<host_tables::Surface, host_tables::ItemList<host::PivotTable>> = "PivotTables";
template <>
inline constexpr std::string_view boundary_name<host_tables::Surface, host_tables::ChartArea> =
    "ChartArea";
}  // namespace qto::server

namespace qto::server::host_tables {

template <auto F>
inline constexpr Entry<Surface, Kind::get, F> get{};
template <auto F>
inline constexpr Entry<Surface, Kind::put, F> put{};
template <auto F>
inline constexpr Entry<Surface, Kind::put_ref, F> put_ref{};
template <auto F>
inline constexpr Entry<Surface, Kind::method, F> method{};
template <auto F>
inline constexpr Entry<Surface, Kind::enumerator, F> enumerator{};

inline Ref<host::Application> application_of(host::HostObject& object) {
  return object.Application();
}
inline Ref<Object> parent_of(host::HostObject& object) { return object.Parent(); }

/// A walk over the positions of a list from 1; holds the list.
Ref<Enumerator> walk_positions(Ref<Object> list, std::function<std::int64_t()> count,
                               std::function<Ref<Object>(std::int64_t)> item);

inline Ref<Enumerator> walk_list(HostList& list) {
  return walk_positions(
      Ref<Object>(&list), [&list] { return list.Count(); },
      [&list](std::int64_t k) { return list.Item(Variant(static_cast<std::int32_t>(k))); });
}

/// What clients find in every collection, from identifier 0 to 3.
inline constexpr Member list_members[] = {
    get<&HostList::Item>(default_id, "Item", "Index"), get<&HostList::Count>(1, "Count"),
    get<&HostList::Application>(2, "Application"),     get<&HostList::Parent>(3, "Parent"),
    enumerator<&walk_list>(enumerator_id, "NewEnum"),
};

/// A host class, which clients reach and never make.
template <class T>
consteval ClassTable host_class(std::string_view name, std::string_view role, std::uint32_t number,
                                std::span<const Member> members) {
  return {name,    role,   own_guid(number + 1), own_guid(number + 2), {}, members, {},
          nullptr, is_a<T>};
}

/// Of a range: all of it, its k-th cell counted row by row, or the cell in a row and a column,
/// which is a number or letters.
Ref<host::Range> cell_of(host::Range& range, const std::optional<std::int32_t>& row,
                         const Variant& column);
/// A range, or the address of one on the sheet; a CallFailure names the argument.
Ref<host::Range> corner_of(host::Worksheet& sheet, const Variant& corner, std::uint32_t argument);

}  // namespace qto::server::host_tables
