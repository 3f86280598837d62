#include "qto/hosts/embedded/recalc/marked_cells.hpp"

#include <algorithm>

namespace qto::embedded {
namespace {
constexpr std::int64_t most_single_cells = 65'536;
}

void MarkedCells::add(const Area& area) {
  const auto number = graph_.number_of(*area.sheet);
  if (!number) return;
  none_ = false;
  if (area.rect.cells() > most_single_cells)
    large_.push_back(area);
  else
    sheets_[*number].insert(area.rect);
}

bool MarkedCells::touch(const Area& area) const noexcept {
  const auto number = graph_.number_of(*area.sheet);
  if (!number) return false;
  return sheets_[*number].touches(area.rect) ||
         std::any_of(large_.begin(), large_.end(), [&](const Area& large) {
           return large.sheet == area.sheet && large.rect.intersect(area.rect);
         });
}

}  // namespace qto::embedded
