#pragma once

#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/links/link_list.hpp"
#include "qto/server/binding/members.hpp"

/// The classes that members of the engine pass, by the names that clients know.
namespace qto::server {
namespace engine_tables {
struct Surface;
}

template <>
inline constexpr std::string_view boundary_name<engine_tables::Surface, ModelPart> = "ModelPart";
template <>
inline constexpr std::string_view boundary_name<engine_tables::Surface, ModelParts> = "ModelParts";
template <>
inline constexpr std::string_view boundary_name<engine_tables::Surface, LinkedBook> = "LinkedBook";
template <>
inline constexpr std::string_view boundary_name<engine_tables::Surface, LinkedBooks> =
    "LinkedBooks";
template <>
inline constexpr std::string_view boundary_name<engine_tables::Surface, DrillOptions> =
    "DrillOptions";

namespace engine_tables {

template <auto F>
inline constexpr Entry<Surface, Kind::get, F> get{};
template <auto F>
inline constexpr Entry<Surface, Kind::put, F> put{};
template <auto F>
inline constexpr Entry<Surface, Kind::put_ref, F> put_ref{};
template <auto F>
inline constexpr Entry<Surface, Kind::method, F> method{};
template <auto E>
inline constexpr EventEntry<Surface, E> event{};
template <class Collection>
consteval Member new_enum() {
  return Entry<Surface, Kind::enumerator, &enumerate<Collection>>{}(enumerator_id, "NewEnum");
}

}  // namespace engine_tables
}  // namespace qto::server
