#include "qto/hosts/embedded/xlsx/load_context.hpp"

#include "qto/hosts/embedded/xlsx/limits.hpp"

namespace qto::embedded {

void LoadContext::check_memory(const Sheet& sheet) const {
  if (earlier_blocks + sheet.cells.block_count() > limits::cell_blocks)
    package.fail(OpenFailureKind::too_large, "", 0,
                 "the cells of sheet \"" + sheet.name + "\" take too much memory");
}

}  // namespace qto::embedded
