#pragma once

#include <optional>

#include "qto/host/host.hpp"

/// The ways in which clients name cells.
namespace qto::server {

/// Of a range: all of it, its k-th cell counted row by row, or the cell in a row and a column,
/// which is a number or letters.
Ref<host::Range> cell_of(host::Range& range, const std::optional<std::int32_t>& row,
                         const Variant& column);
/// A range, or the address of one on the sheet; a CallFailure names the argument.
Ref<host::Range> corner_of(host::Worksheet& sheet, const Variant& corner, std::uint32_t argument);

}  // namespace qto::server
