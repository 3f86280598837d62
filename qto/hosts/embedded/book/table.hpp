#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/automation/address.hpp"

namespace qto::embedded {

class Sheet;

/// A table of a worksheet, the target of structured references such as Sales[Amount].
struct Table {
  std::string name;
  const Sheet* sheet = nullptr;
  /// The whole table with its header and totals rows.
  Rect range;
  int header_rows = 1;
  int totals_rows = 0;
  std::vector<std::string> columns;
  /// A filter of its own decides which of its rows are shown.
  bool filtered = false;

  /// Position of a column from 0; letter case is ignored.
  std::optional<int> find_column(std::string_view column) const;
  /// The rows between header and totals; nothing when there are none.
  std::optional<Rect> data() const noexcept;
  std::optional<Rect> headers() const noexcept;
  std::optional<Rect> totals() const noexcept;
};

/// A pivot table: where it stands, page fields included, and the text of its source.
struct PivotModel {
  std::string name;
  Rect table_range;
  std::string source;
};

}  // namespace qto::embedded
