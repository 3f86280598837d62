#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/host/range.hpp"

namespace qto::cli {

/// How much of a sheet is looked at, and how wide a line may be.
struct PictureSize {
  int rows = 20;
  std::size_t width = 80;
  bool colour = false;
};

/// What the window shows around an item: lines, texts as displayed, and what is hidden in between.
struct Picture {
  enum class Align : std::uint8_t { left, centre, right };
  struct Shown {
    std::string text;
    Align align = Align::left;
  };
  struct Line {
    std::int32_t number = 0;
    /// Lines between this and the one before it are hidden, or merely left out.
    bool after_hidden = false;
    bool after_gap = false;
    /// Stands outside of the window, for its headings.
    bool heading = false;
  };
  Rect item;
  std::vector<Line> rows, columns;
  std::vector<std::vector<Shown>> cells;  ///< by row, then column
  /// Runs of hidden lines among those that are in view.
  std::vector<Rect> hidden_rows, hidden_columns;
};

/// The active window's view of the sheet of `item`, headings that lie outside of it included. What
/// lies beyond the used cells is left out.
Picture take_picture(const Ref<host::Range>& item);

/// Draws it in lines of at most `size.width` columns, as far as one column of the sheet allows.
std::string drawn(const Picture& picture, const PictureSize& size);

}  // namespace qto::cli
