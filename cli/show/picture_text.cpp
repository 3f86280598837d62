#include <fmt/format.h>

#include <algorithm>

#include "cli/show/picture.hpp"
#include "cli/terminal/text_width.hpp"

namespace qto::cli {
namespace {

using Align = Picture::Align;
using Line = Picture::Line;

constexpr std::size_t widest_text = 28;
constexpr std::size_t narrow_text = 12;
constexpr std::size_t widest_number = 30;
constexpr std::size_t narrowest = 3;

/// A column of the drawing.
struct Column {
  std::size_t index = 0;  ///< into the picture's columns
  std::size_t width = narrowest;
  std::size_t needed = 0;  ///< for its texts to show in full
  std::size_t least = narrowest;
  bool numbers = false;
};

bool has(const Rect& item, const Line& line, bool row) {
  return row ? line.number >= item.first.row && line.number <= item.last.row
             : line.number >= item.first.column && line.number <= item.last.column;
}

class Drawing {
 public:
  Drawing(const Picture& picture, const PictureSize& size) : picture_(picture), size_(size) {
    for (const Line& row : picture_.rows)
      number_width_ = std::max(number_width_, std::to_string(row.number).size());
    for (std::size_t i = 0; i < picture_.columns.size(); ++i) columns_.push_back(measured(i));
    fit();
    spread();
  }

  std::string text() {
    draw_letters();
    for (std::size_t row = 0; row < picture_.rows.size(); ++row) {
      draw_break(picture_.rows[row]);
      draw_row(row);
    }
    if (!picture_.hidden_rows.empty() && !picture_.rows.empty() &&
        picture_.hidden_rows.back().first.row > picture_.rows.back().number)
      break_line(hidden_text(picture_.hidden_rows.back()));
    draw_hidden_columns();
    return std::move(out_);
  }

 private:
  const Line& line_of(const Column& column) const { return picture_.columns[column.index]; }
  bool in_item(const Line& row, const Column& column) const {
    return has(picture_.item, row, true) && has(picture_.item, line_of(column), false);
  }
  std::size_t margin() const { return number_width_ + 4; }
  std::size_t gap_before(std::size_t k) const {
    const Line& line = line_of(columns_[k]);
    return k > 0 && (line.after_hidden || line.after_gap) ? 3 : 2;
  }
  std::size_t total() const {
    std::size_t sum = margin();
    for (std::size_t k = 0; k < columns_.size(); ++k) sum += gap_before(k) + columns_[k].width;
    return sum;
  }

  Column measured(std::size_t index) const {
    Column column{index};
    std::string letters;
    append_column(letters, picture_.columns[index].number);
    column.least = std::max(narrowest, letters.size());
    for (const auto& row : picture_.cells) {
      const Picture::Shown& cell = row[index];
      const std::size_t width = text_width(cell.text);
      if (cell.align != Align::left) {
        column.least = std::max(column.least, std::min(width, widest_number));
        column.numbers = true;
      } else if (index + 1 == row.size() || !row[index + 1].text.empty()) {
        column.needed = std::max(column.needed, width);
      }
    }
    column.width = std::max(column.least, std::min(column.needed, widest_text));
    return column;
  }

  /// Columns far from the item give way until the rest fits.
  void fit() {
    if (total() > size_.width)
      for (Column& column : columns_)
        column.width = std::max(column.least, std::min(column.width, narrow_text));
    while (total() > size_.width && columns_.size() > 1) {
      const std::size_t first = line_of(columns_.front()).heading ? 1 : 0;
      const std::int32_t left = first < columns_.size()
                                    ? picture_.item.first.column - line_of(columns_[first]).number
                                    : 0;
      const std::int32_t right =
          line_of(columns_.back()).number -
          std::min(picture_.item.last.column, picture_.item.first.column + 3);
      if (left <= 0 && right <= 0) break;
      if (left > right)
        columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(first));
      else
        columns_.pop_back();
    }
  }

  /// What is left of the width goes to texts that were cut.
  void spread() {
    for (Column& column : columns_) {
      const std::size_t used = total();
      if (used >= size_.width) return;
      if (column.needed > column.width)
        column.width += std::min(column.needed - column.width, size_.width - used);
    }
  }

  std::string colour(const char* code, std::string text) const {
    return size_.colour && !text.empty() ? fmt::format("\x1b[{}m{}\x1b[0m", code, text) : text;
  }
  void end_line(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    out_ += line + "\n";
  }
  static std::string aligned(const std::string& text, std::size_t width, Align align) {
    const std::string shown = clipped(text, width);
    const std::size_t room = width - std::min(width, text_width(shown));
    const std::size_t before = align == Align::left ? 0 : align == Align::right ? room : room / 2;
    return std::string(before, ' ') + shown + std::string(room - before, ' ');
  }

  void draw_letters() {
    std::string line(margin(), ' ');
    for (std::size_t k = 0; k < columns_.size(); ++k) {
      std::string letters;
      append_column(letters, line_of(columns_[k]).number);
      line += k > 0 && gap_before(k) == 3 ? " ┊ " : "  ";
      line += aligned(letters, columns_[k].width, columns_[k].numbers ? Align::right : Align::left);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out_ += colour("2", line) + "\n";
  }

  void draw_row(std::size_t index) {
    const Line& row = picture_.rows[index];
    std::string line = has(picture_.item, row, true) ? "▸ " : "  ";
    line += colour("2", fmt::format("{:>{}}", row.number, number_width_) + " │");
    bool open = false;
    for (std::size_t k = 0; k < columns_.size();) {
      const bool marked = in_item(row, columns_[k]);
      line += separator(k, open, marked);
      open = marked;
      std::size_t next = k + 1;
      const std::string text = cell_text(index, k, next);
      line += marked ? colour("7", text) : text;
      k = next;
    }
    if (open) line += "]";
    end_line(std::move(line));
  }

  std::string separator(std::size_t k, bool open, bool marked) const {
    std::string text = open && !marked ? "]" : " ";
    if (gap_before(k) == 3) text += "┊";
    return text + (marked && !open ? "[" : " ");
  }

  /// The text of a cell; a long one runs on over empty neighbours, as in a spreadsheet. `next` is
  /// moved behind those.
  std::string cell_text(std::size_t index, std::size_t k, std::size_t& next) const {
    const Line& row = picture_.rows[index];
    const auto& cells = picture_.cells[index];
    const Picture::Shown& cell = cells[columns_[k].index];
    std::size_t room = columns_[k].width;
    const std::size_t wanted = text_width(cell.text);
    if (cell.align != Align::left || in_item(row, columns_[k]))
      return aligned(cell.text, room, cell.align);
    while (wanted > room && next < columns_.size() && cells[columns_[next].index].text.empty() &&
           !in_item(row, columns_[next]) && !line_of(columns_[next]).after_gap) {
      room += gap_before(next) + columns_[next].width;
      ++next;
    }
    if (wanted > room && next == columns_.size())
      room += size_.width - std::min(size_.width, total());
    return aligned(cell.text, room, Align::left);
  }

  void draw_break(const Line& row) {
    if (row.after_hidden)
      for (const Rect& hidden : picture_.hidden_rows)
        if (hidden.last.row + 1 == row.number) break_line(hidden_text(hidden));
    if (row.after_gap) break_line("");
  }
  void break_line(const std::string& text) {
    end_line(
        colour("2", std::string(number_width_ + 3, ' ') + "┊" + (text.empty() ? "" : "  " + text)));
  }
  static std::string hidden_text(const Rect& rows) {
    if (rows.rows() == 1) return fmt::format("row {} is hidden", rows.first.row);
    return fmt::format("rows {} to {} are hidden", rows.first.row, rows.last.row);
  }

  void draw_hidden_columns() {
    std::string list;
    int count = 0;
    for (const Rect& run : picture_.hidden_columns) {
      if (!list.empty()) list += ", ";
      append_column(list, run.first.column);
      if (run.columns() > 1) {
        list += " to ";
        append_column(list, run.last.column);
      }
      count += run.columns();
    }
    if (count == 0) return;
    out_ += fmt::format("\nColumn{} {} {} hidden.\n", count > 1 ? "s" : "", list,
                        count > 1 ? "are" : "is");
  }

  const Picture& picture_;
  const PictureSize& size_;
  std::size_t number_width_ = 2;
  std::vector<Column> columns_;
  std::string out_;
};

}  // namespace

std::string drawn(const Picture& picture, const PictureSize& size) {
  return Drawing(picture, size).text();
}

}  // namespace qto::cli
