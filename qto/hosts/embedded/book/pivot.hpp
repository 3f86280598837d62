#pragma once

#include <string>

#include "qto/automation/address.hpp"

namespace qto::embedded {

/// A pivot table: where it stands, page fields included, and the text of its source.
struct PivotModel {
  std::string name;
  Rect table_range;
  std::string source;
};

}  // namespace qto::embedded
