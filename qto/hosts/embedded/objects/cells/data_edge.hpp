#pragma once

#include <cstdint>

#include "qto/hosts/embedded/book/sheet.hpp"

namespace qto::embedded {

/// The moves of Range.End beside those that the host interface names.
enum EdgeDirection : std::int32_t {
  edge_right = -4161,
  edge_left = -4159,
  edge_down = -4121,
  edge_up = -4162
};

/// Where Ctrl and an arrow key lead from a cell: to the end of its block of filled cells, else to
/// the next filled cell, else to the edge of the grid. Cells are filled when they hold a value or a
/// formula.
CellPos data_edge(const Sheet& sheet, CellPos from, EdgeDirection direction);

}  // namespace qto::embedded
