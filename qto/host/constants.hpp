#pragma once

#include <cstdint>

/// Numbers that a spreadsheet host gives to its own notions.
namespace qto::host {

enum ReferenceStyle : std::int32_t { xlA1 = 1, xlR1C1 = -4150 };
enum Direction : std::int32_t { xlToRight = -4161, xlDown = -4121 };
/// Sheet visibility; anything but visible counts as hidden.
enum Visibility : std::int32_t { xlSheetVisible = -1, xlSheetHidden = 0, xlSheetVeryHidden = 2 };
/// Link type of LinkSources: links to other workbooks.
inline constexpr std::int32_t link_type_workbooks = 1;
/// Surface charts; their series have no values formula.
inline constexpr std::int32_t first_surface_chart = 83;
inline constexpr std::int32_t last_surface_chart = 86;

}  // namespace qto::host
