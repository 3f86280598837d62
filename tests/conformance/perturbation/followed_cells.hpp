#pragma once

#include <string>
#include <vector>

#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "tests/conformance/perturbation/changeable_cells.hpp"

namespace qto::embedded::conformance {

/// What a drill of one level found.
struct Followed {
  std::vector<ChangeableCells::Index> cells;  ///< in order, each once
  bool intelligently = false;                 ///< a special function was drilled
  bool whole = false;                         ///< some call could not be decided
  std::string failure;                        ///< why there is no answer, or what was reported
};

/// Asks drills which cells feed a formula directly; names are followed to the cells behind them.
class FollowedCells {
 public:
  FollowedCells(const ChangeableCells& cells, const std::vector<Book*>& books,
                const Ref<DrillOptions>& options);
  ~FollowedCells();
  FollowedCells(const FollowedCells&) = delete;
  FollowedCells& operator=(const FollowedCells&) = delete;

  Followed of(const Ref<host::Range>& cell);

 private:
  void drill(Followed& found);
  void drill_through_names();
  void collect(ModelPart& part, ModelParts& list, Followed& found);
  void add(ModelPart& part, Followed& found);
  void add_from_large(ModelParts& list, Followed& found);
  const Sheet* sheet_of(const ModelPart& part);

  const ChangeableCells& cells_;
  const std::vector<Book*>& books_;
  Ref<DrillDown> drill_;
  const Sheet* last_sheet_ = nullptr;
  std::vector<const ModelPart*> names_;  // collected already
  std::string report_;
  int reports_ = 0;
};

}  // namespace qto::embedded::conformance
