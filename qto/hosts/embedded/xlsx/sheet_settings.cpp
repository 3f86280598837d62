#include "qto/hosts/embedded/xlsx/sheet_settings.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "qto/hosts/embedded/xlsx/protection.hpp"

namespace qto::embedded {
namespace {

// A stored width counts the pixels beside the text of a cell as well: 5, at 7 to a digit.
constexpr double digit_pixels = 7;
constexpr double margin_pixels = 5;

double characters_of(double stored_width) noexcept {
  constexpr double one_character = (digit_pixels + margin_pixels) / digit_pixels;
  if (stored_width < one_character) return std::max(0.0, stored_width / one_character);
  return std::min(stored_width, 255.0 + one_character) - margin_pixels / digit_pixels;
}

/// The width of a column that is to show so many characters, in whole steps of 8 pixels.
double default_width(double base_characters) noexcept {
  const double pixels = base_characters * digit_pixels + margin_pixels;
  return (std::ceil(pixels / 8) * 8 - margin_pixels) / digit_pixels;
}

}  // namespace

bool is_filter_criterion(std::string_view element) noexcept {
  constexpr std::string_view criteria[] = {"filters",       "customFilters", "top10",
                                           "dynamicFilter", "colorFilter",   "iconFilter"};
  return std::ranges::find(criteria, element) != std::end(criteria);
}

void SheetSettings::start(std::string_view name, const Attributes& attributes) {
  if (name == "sheetFormatPr") return start_format(attributes);
  if (name == "col") return start_column(attributes);
  if (name == "sheetView") return start_view(attributes);
  if (name == "pane") return start_pane(attributes);
  if (name == "selection") return start_selection(attributes);
  if (name == "sheetProtection") return start_protection(attributes);
  if (name == "autoFilter") return start_filter(attributes);
  if (name == "customSheetViews") own_views_ = false;
  if (is_filter_criterion(name)) return take_filter();
  if (name == "mergeCell")
    if (const auto area = parse_area(attributes.text("ref"))) sheet_.merges.push_back(area->rect());
}

void SheetSettings::start_format(const Attributes& attributes) {
  SheetLayout& layout = sheet_.layout;
  const double base = std::clamp(attributes.number_or("baseColWidth", 8), 0.0, 255.0);
  const double stored = attributes.number_or("defaultColWidth", 0);
  layout.default_width = stored > 0 ? characters_of(stored) : default_width(base);
  const double height = attributes.number_or("defaultRowHeight", 0);
  if (height > 0) layout.default_height = std::min(height, 409.5);
  layout.rows_hidden_by_default = attributes.flag("zeroHeight");
}

void SheetSettings::start_column(const Attributes& attributes) {
  const std::int64_t min = attributes.whole_or("min", 0);
  const std::int64_t max = std::min<std::int64_t>(attributes.whole_or("max", min), max_columns);
  if (min < 1 || min > max) return;
  ColumnLayout layout;
  const double width = attributes.number_or("width", -1);
  layout.width = static_cast<float>(characters_of(width));
  layout.hidden = attributes.flag("hidden") || width == 0;
  // Records must not overlap. Where they do the first one counts, so that any number of them
  // costs no more than the columns there are.
  auto column = static_cast<std::int32_t>(min);
  while (column <= max) {
    const std::int32_t from = column;
    while (column <= max && !columns_seen_[static_cast<std::size_t>(column)])
      columns_seen_.set(static_cast<std::size_t>(column++));
    if (column > from) sheet_.layout.set_columns(from, column - 1, layout);
    while (column <= max && columns_seen_[static_cast<std::size_t>(column)]) ++column;
  }
}

void SheetSettings::start_view(const Attributes& attributes) {
  if (++views_ != 1) return;
  if (const auto cell = parse_cell(attributes.text("topLeftCell"))) sheet_.scroll = cell->pos;
}

void SheetSettings::start_pane(const Attributes& attributes) {
  if (views_ != 1) return;
  if (const char* active = attributes.find("activePane")) active_pane_ = active;
  const auto corner = parse_cell(attributes.text("topLeftCell"));
  const std::string_view state = attributes.text("state");
  if (state == "frozen" || state == "frozenSplit") return freeze(attributes, corner);
  // A window that is merely split shows what its active pane shows.
  if (corner && active_pane_.starts_with("bottom")) sheet_.scroll.row = corner->pos.row;
  if (corner && active_pane_.ends_with("Right")) sheet_.scroll.column = corner->pos.column;
}

void SheetSettings::freeze(const Attributes& attributes, const std::optional<WrittenCell>& corner) {
  const auto count = [&](const char* split, std::int32_t first, std::int32_t end) {
    const double lines = attributes.number_or(split, 0);
    return lines >= 1 ? static_cast<std::int32_t>(std::min<double>(lines, end - first)) : 0;
  };
  const CellPos first = sheet_.scroll;
  sheet_.frozen = {first, count("ySplit", first.row, max_rows),
                   count("xSplit", first.column, max_columns)};
  sheet_.scroll = {first.row + sheet_.frozen.rows, first.column + sheet_.frozen.columns};
  if (!corner) return;
  sheet_.scroll.row = std::max(sheet_.scroll.row, corner->pos.row);
  sheet_.scroll.column = std::max(sheet_.scroll.column, corner->pos.column);
}

void SheetSettings::start_selection(const Attributes& attributes) {
  const char* pane = attributes.find("pane");
  if (views_ != 1 || active_pane_ != (pane ? pane : "topLeft")) return;
  const auto active = parse_cell(attributes.text("activeCell"));
  if (active) sheet_.selection = Rect::cell(active->pos);
  std::string_view areas = attributes.text("sqref");
  while (!areas.empty()) {
    const std::string_view word = areas.substr(0, areas.find(' '));
    areas.remove_prefix(std::min(word.size() + 1, areas.size()));
    const auto area = parse_area(word);
    if (!area || (active && !area->rect().contains(active->pos))) continue;
    sheet_.selection = area->rect();
    return;
  }
}

void SheetSettings::start_filter(const Attributes& attributes) {
  const auto area = parse_area(attributes.text("ref"));
  filter_ = area && own_views_ ? area->rect() : Rect{};
}

/// Notes the filter once, whatever number of its columns have criteria.
void SheetSettings::take_filter() {
  const Rect filter = std::exchange(filter_, Rect{});
  if (filter.rows() > 1) sheet_.layout.add_filter(filter.first.row + 1, filter.last.row);
}

void SheetSettings::start_protection(const Attributes& attributes) {
  SheetProtection& protection = sheet_.protection;
  // Chart sheets protect their content instead of cells.
  protection.enabled = attributes.flag(sheet_.kind == SheetKind::chart ? "content" : "sheet");
  // These name what is not allowed.
  protection.format_columns = !attributes.flag("formatColumns", true);
  protection.format_rows = !attributes.flag("formatRows", true);
  read_password(attributes, sheet_password, protection);
}

}  // namespace qto::embedded
