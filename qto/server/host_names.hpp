#pragma once

#include <functional>

#include "qto/server/bind.hpp"
#include "qto/server/host_lists.hpp"

/// The host's classes by the names that clients know, and what their tables share.
namespace qto::server {

template <>
inline constexpr std::string_view boundary_name<host::Application> = "Application";
template <>
inline constexpr std::string_view boundary_name<host::Workbooks> = "Workbooks";
template <>
inline constexpr std::string_view boundary_name<host::Workbook> = "Workbook";
template <>
inline constexpr std::string_view boundary_name<host::Worksheet> = "Worksheet";
template <>
inline constexpr std::string_view boundary_name<host::Range> = "Range";
template <>
inline constexpr std::string_view boundary_name<host::DefinedName> = "Name";
template <>
inline constexpr std::string_view boundary_name<host::Chart> = "Chart";
template <>
inline constexpr std::string_view boundary_name<host::ChartObject> = "ChartObject";
template <>
inline constexpr std::string_view boundary_name<host::Series> = "Series";
template <>
inline constexpr std::string_view boundary_name<host::PivotTable> = "PivotTable";
template <>
inline constexpr std::string_view boundary_name<host::Window> = "Window";
template <>
inline constexpr std::string_view boundary_name<host::Pane> = "Pane";
template <>
inline constexpr std::string_view boundary_name<host::WorksheetFunction> = "WorksheetFunction";
template <>
inline constexpr std::string_view boundary_name<NameList> = "Names";
template <>
inline constexpr std::string_view boundary_name<ItemList<host::Range>> = "Areas";
template <>
inline constexpr std::string_view boundary_name<ItemList<host::Series>> = "SeriesCollection";
template <>
inline constexpr std::string_view boundary_name<ItemList<host::ChartObject>> = "ChartObjects";
template <>
inline constexpr std::string_view boundary_name<ItemList<host::PivotTable>> = "PivotTables";
template <>
inline constexpr std::string_view boundary_name<ChartArea> = "ChartArea";

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
    get<&HostList::Item>(default_id, "Item", "Index"),
    get<&HostList::Count>(1, "Count"),
    get<&HostList::Application>(2, "Application"),
    get<&HostList::Parent>(3, "Parent"),
    entry<Kind::enumerator, &walk_list>(enumerator_id, "NewEnum", ""),
};

/// A host class, which clients reach and never make.
consteval ClassTable host_class(std::string_view name, std::string_view role, std::uint32_t number,
                                std::span<const Member> members) {
  return {name, role, own_guid(number + 1), own_guid(number + 2), {}, members, {}, nullptr};
}

}  // namespace qto::server
