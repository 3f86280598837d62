#pragma once

#include <cstddef>
#include <span>

#include "qto/automation/address.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

/// Neighbouring constants of one sheet that fill a block row by row.
struct CellRun {
  std::size_t cells = 0;  ///< 0: the list does not begin with such a run
  std::size_t empty = 0;
  Rect block;
};

/// The longest run at the front of `parts`, for lists too long to be read cell by cell.
CellRun run_at_front(std::span<ModelPart* const> parts);
/// The same of cells that hold nothing.
CellRun empty_run_at_front(std::span<ModelPart* const> parts);

}  // namespace qto::cli
