#include "cli/show/picture.hpp"

#include <algorithm>

#include "cli/output/part_text.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/visible_panes.hpp"
#include "qto/model/display_format.hpp"

namespace qto::cli {
namespace {

using Line = Picture::Line;

/// Rows or columns of a sheet, so that both are gathered the same way.
struct Axis {
  const host::Worksheet& sheet;
  bool of_rows;

  bool hidden(std::int32_t line) const {
    const auto cell = of_rows ? sheet.Cells(line, 1) : sheet.Cells(1, line);
    const auto whole = of_rows ? cell->EntireRow() : cell->EntireColumn();
    return whole->Hidden().value_or(false);
  }
  std::int32_t first_of(const Rect& block) const {
    return of_rows ? block.first.row : block.first.column;
  }
  std::int32_t last_of(const Rect& block) const {
    return of_rows ? block.last.row : block.last.column;
  }
  Rect run(std::int32_t first, std::int32_t last) const {
    return of_rows ? Rect{{first, 1}, {last, max_columns}} : Rect{{1, first}, {max_rows, last}};
  }
};

struct Gathered {
  std::vector<Line> lines;
  std::vector<Rect> hidden;
};

/// The lines that show in the panes, in order, as far as anything is on them.
Gathered gather(const Axis& axis, std::vector<Rect> panes, std::int32_t end) {
  Gathered out;
  std::ranges::sort(panes, {}, [&](const Rect& pane) { return axis.first_of(pane); });
  std::int32_t done = 0;
  for (const Rect& pane : panes) {
    const std::int32_t first = std::max(axis.first_of(pane), done + 1);
    const bool gap = done > 0 && first > done + 1;
    std::int32_t hidden_from = 0;
    for (std::int32_t line = first; line <= std::min(axis.last_of(pane), end); ++line) {
      if (axis.hidden(line)) {
        if (hidden_from == 0) hidden_from = line;
        continue;
      }
      if (hidden_from != 0) out.hidden.push_back(axis.run(hidden_from, line - 1));
      out.lines.push_back({line, hidden_from != 0, gap && line == first, false});
      hidden_from = 0;
    }
    if (hidden_from != 0)
      out.hidden.push_back(axis.run(hidden_from, std::min(axis.last_of(pane), end)));
    done = std::max(done, axis.last_of(pane));
  }
  return out;
}

/// Of a hundred lines before the window the one that heads most of what is in it: a text, or in a
/// row also a number or date.
std::int32_t heading_line(const Axis& axis, const std::vector<Line>& across, std::int32_t before) {
  constexpr std::int32_t most_lines = 100;
  std::int32_t best = 0;
  std::size_t most = across.size() / 3;
  for (std::int32_t line = 1; line < std::min(before, most_lines); ++line) {
    std::size_t filled = 0;
    for (const Line& other : across) {
      const Variant value = axis.sheet.cell_value(axis.of_rows ? CellPos{line, other.number}
                                                               : CellPos{other.number, line});
      filled += value.is_text() ? !value.text().empty() : axis.of_rows && !value.is_empty();
    }
    if (filled <= most || axis.hidden(line)) continue;
    most = filled;
    best = line;
  }
  return best;
}

void put_heading(const Axis& axis, std::vector<Line>& lines, const std::vector<Line>& across) {
  if (lines.empty() || lines.front().number == 1) return;
  const std::int32_t line = heading_line(axis, across, lines.front().number);
  if (line == 0) return;
  lines.front().after_gap = lines.front().number > line + 1;
  lines.insert(lines.begin(), {line, false, false, true});
}

Picture::Shown shown_cell(const host::Worksheet& sheet, CellPos pos) {
  const auto cell = sheet.Cells(pos.row, pos.column);
  const Variant value = cell->value();
  std::string text = cell->Text();
  // Hashes stand for a number that the sheet's column has no room for; here there is.
  if (text.starts_with("##")) text = format_hidden_number(value);
  using enum Picture::Align;
  const bool special = value.is_error() || value.get_if<bool>();
  return {one_line(text), value.is_text() || value.is_empty() ? left : special ? centre : right};
}

}  // namespace

Picture take_picture(const Ref<host::Range>& item) {
  const auto sheet = item->Worksheet();
  std::vector<Rect> panes = embedded::visible_panes(item->Application());
  if (panes.empty())  // of a host that tells one pane only
    panes.push_back(item->Application()->ActiveWindow()->ActivePane()->VisibleRange()->block());
  const Rect used = sheet->UsedRange()->block();
  Picture picture;
  picture.item = item->block();
  const auto end = [](std::int32_t used_end, std::int32_t first, std::int32_t last) {
    return std::max(used_end, last - first < 50 ? last : first);
  };
  const Axis row_axis{*sheet, true};
  const Axis column_axis{*sheet, false};
  Gathered rows =
      gather(row_axis, panes, end(used.last.row, picture.item.first.row, picture.item.last.row));
  Gathered columns =
      gather(column_axis, panes,
             end(used.last.column, picture.item.first.column, picture.item.last.column));
  if (panes.size() == 1) {
    put_heading(column_axis, columns.lines, rows.lines);
    put_heading(row_axis, rows.lines, columns.lines);
  }
  picture.rows = std::move(rows.lines);
  picture.columns = std::move(columns.lines);
  picture.hidden_rows = std::move(rows.hidden);
  picture.hidden_columns = std::move(columns.hidden);
  for (const Line& row : picture.rows) {
    auto& line = picture.cells.emplace_back();
    for (const Line& column : picture.columns)
      line.push_back(shown_cell(*sheet, {row.number, column.number}));
  }
  return picture;
}

}  // namespace qto::cli
