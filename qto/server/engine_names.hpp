#pragma once

#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/links/link_list.hpp"
#include "qto/server/bind.hpp"

/// The classes that members of the engine pass, by the names that clients know.
namespace qto::server {

template <>
inline constexpr std::string_view boundary_name<ModelPart> = "ModelPart";
template <>
inline constexpr std::string_view boundary_name<ModelParts> = "ModelParts";
template <>
inline constexpr std::string_view boundary_name<LinkedBook> = "LinkedBook";
template <>
inline constexpr std::string_view boundary_name<LinkedBooks> = "LinkedBooks";
template <>
inline constexpr std::string_view boundary_name<DrillOptions> = "DrillOptions";

}  // namespace qto::server
