#include "qto/hosts/embedded/objects/cells/data_edge.hpp"

namespace qto::embedded {
namespace {

bool is_filled(const Sheet& sheet, CellPos pos) {
  const Cell* cell = sheet.cells.find(pos);
  return (cell && !cell->is_empty()) || sheet.formula_at(pos) != 0;
}

CellPos step(CellPos pos, EdgeDirection direction) {
  switch (direction) {
    case edge_right:
      ++pos.column;
      break;
    case edge_left:
      --pos.column;
      break;
    case edge_down:
      ++pos.row;
      break;
    case edge_up:
      --pos.row;
      break;
  }
  return pos;
}

/// Where the search for the next filled cell goes on from `pos`: empty stretches that the store can
/// tell are passed over at once. Off the grid when there is nothing more.
CellPos skip_empty(const Sheet& sheet, CellPos pos, EdgeDirection direction) {
  if (!sheet.large_blocks().empty()) return pos;
  if (direction == edge_right && pos.column > sheet.cells.last_column())
    return {pos.row, max_columns + 1};
  if (direction == edge_down) {
    const CellPos stored = sheet.cells.next_in_column(pos, max_rows);
    return stored.row == 0 ? CellPos{max_rows + 1, pos.column} : stored;
  }
  return pos;
}

CellPos last_of_run(const Sheet& sheet, CellPos pos, EdgeDirection direction) {
  for (CellPos next = step(pos, direction); next.on_grid() && is_filled(sheet, next);
       next = step(next, direction))
    pos = next;
  return pos;
}

CellPos grid_edge(CellPos pos, EdgeDirection direction) {
  switch (direction) {
    case edge_right:
      return {pos.row, max_columns};
    case edge_left:
      return {pos.row, 1};
    case edge_down:
      return {max_rows, pos.column};
    case edge_up:
      return {1, pos.column};
  }
  return pos;
}

}  // namespace

CellPos data_edge(const Sheet& sheet, CellPos from, EdgeDirection direction) {
  CellPos next = step(from, direction);
  if (!next.on_grid()) return from;
  if (is_filled(sheet, from) && is_filled(sheet, next)) return last_of_run(sheet, next, direction);
  while (next.on_grid()) {
    next = skip_empty(sheet, next, direction);
    if (!next.on_grid()) break;
    if (is_filled(sheet, next)) return next;
    next = step(next, direction);
  }
  return grid_edge(from, direction);
}

}  // namespace qto::embedded
