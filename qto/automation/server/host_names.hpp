#pragma once

#include "qto/automation/server/bind.hpp"
#include "qto/automation/server/host_lists.hpp"

/// The host's classes by the names that clients know.
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
inline constexpr std::string_view boundary_name<host::Series> = "Series";

/// The identifier of a member that a bare call of its object reaches.
inline constexpr std::int32_t default_id = 0;

/// An enumerator over Count and Item of a list.
template <class List>
Ref<Enumerator> walk_items(List& list) {
  std::vector<Variant> items;
  for (std::int32_t i = 1; i <= list.Count(); ++i)
    items.emplace_back(Ref<Object>(list.Item(Variant(i))));
  return make_ref<ListEnumerator>(std::move(items));
}
template <class List>
consteval Member new_list_enum() {
  return entry<Kind::enumerator, &walk_items<List>>(enumerator_id, "NewEnum", "");
}

}  // namespace qto::server
