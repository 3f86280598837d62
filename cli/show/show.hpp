#pragma once

#include "cli/asking/arguments.hpp"
#include "cli/book/item.hpp"
#include "cli/output/reports.hpp"
#include "cli/show/picture.hpp"

namespace qto::cli {

/// Selects the item as a person would go to it, and prints what then is in view: the cells around
/// it, or the chart of a series. Throws Complaint where it cannot be shown.
void show_item(const Arguments& arguments, const Item& item, const PictureSize& size,
               const Reports& reports);

/// As much as the terminal has room for; 80 columns and 20 rows of cells where there is none.
PictureSize picture_size();

}  // namespace qto::cli
