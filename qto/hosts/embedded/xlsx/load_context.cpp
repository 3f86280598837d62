#include "qto/hosts/embedded/xlsx/load_context.hpp"

namespace qto::embedded {

void LoadContext::check_memory(const Sheet& sheet) const {
  // A block of 64 cells with formulas, and its share of what finds it.
  constexpr std::int64_t block_bytes = 1'700;
  if ((earlier_blocks + sheet.cells.block_count()) * block_bytes > cell_memory)
    package.fail(OpenFailureKind::too_large, "", 0,
                 "the cells of sheet \"" + sheet.name + "\" take too much memory");
}

}  // namespace qto::embedded
