#include "qto/hosts/embedded/xlsx/load_context.hpp"

namespace qto::embedded {

void LoadContext::check_cells(const Sheet& sheet) const {
  // A block of 64 cells with formulas, and its share of what finds it.
  constexpr std::int64_t block_bytes = 1'700;
  const auto cells = static_cast<std::uint64_t>(earlier_cells + sheet.cells.cell_count());
  const auto blocks = static_cast<std::uint64_t>(earlier_blocks + sheet.cells.block_count());
  if (cells > limits().cells)
    package.fail_beyond(&Limits::cells, "",
                        "the workbook has too many cells (in sheet \"" + sheet.name + "\")");
  if (blocks * block_bytes > limits().cell_bytes)
    package.fail_beyond(&Limits::cell_bytes, "",
                        "the cells of sheet \"" + sheet.name + "\" take too much memory");
}

}  // namespace qto::embedded
