#pragma once

#include <string>
#include <string_view>

namespace qto::cli {

/// START or ITEM, cut at its "!".
struct ItemText {
  bool has_sheet = false;
  std::string sheet;  ///< without apostrophes, inner ones single; a chart in parentheses included
                      ///< where it was written inside the apostrophes or without any
  std::string chart;  ///< in parentheses after a quoted sheet
  std::string rest;   ///< address, defined name or series
};

/// Throws ItemError for a text that is not of that form.
ItemText split_item(std::string_view text);

}  // namespace qto::cli
