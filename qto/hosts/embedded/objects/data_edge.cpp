#include "qto/hosts/embedded/objects/data_edge.hpp"

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

}  // namespace

CellPos data_edge(const Sheet& sheet, CellPos from, EdgeDirection direction) {
  CellPos next = step(from, direction);
  if (!next.on_grid()) return from;
  const bool inside = is_filled(sheet, from) && is_filled(sheet, next);
  CellPos last = from;
  while (next.on_grid()) {
    const bool filled = is_filled(sheet, next);
    if (inside && !filled) return last;
    if (!inside && filled) return next;
    last = next;
    next = step(next, direction);
  }
  return last;
}

}  // namespace qto::embedded
