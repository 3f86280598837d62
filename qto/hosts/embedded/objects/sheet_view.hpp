#pragma once

#include "qto/hosts/embedded/objects/application_object.hpp"

/// What of a sheet shows in its window.
namespace qto::embedded {

/// The cells that show in the pane that `cell` lies in, those at the edge that show in part
/// included. Of frozen panes there are up to four: rows above and columns left of what scrolls.
Rect visible_block(const ApplicationObject& application, const Sheet& sheet, CellPos cell);
/// The first cell that can be scrolled to; above and left of it lines are frozen.
CellPos first_scrollable(const Sheet& sheet) noexcept;
/// Puts a row or column at the top or left of what scrolls; frozen ones stay where they are.
void scroll_to_row(Sheet& sheet, std::int32_t row) noexcept;
void scroll_to_column(Sheet& sheet, std::int32_t column) noexcept;
/// Scrolls just as far as needed for the cell to show.
void scroll_into_view(const ApplicationObject& application, Sheet& sheet, CellPos pos);

}  // namespace qto::embedded
