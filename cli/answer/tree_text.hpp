#pragma once

#include <cstdio>
#include <string>

#include "cli/terminal/progress.hpp"
#include "qto/model/model_part.hpp"

namespace qto::cli {

struct TreeCounts {
  std::size_t formulas = 0;  ///< cells, names and series with a formula
  std::size_t others = 0;    ///< constants, empty cells, what could not be opened
  std::size_t levels = 0;    ///< below the start
};

/// Prints the tree of a start part's precedents, a part that comes again without what is below it.
/// Long rows of constants in neighbouring cells share one line unless `full`. `by_distance`: what
/// is below a part stands where the part is nearest to the start, not where it comes first.
TreeCounts print_tree(std::FILE* out, const Ref<ModelPart>& start, bool full, bool by_distance,
                      Progress& progress);

}  // namespace qto::cli
