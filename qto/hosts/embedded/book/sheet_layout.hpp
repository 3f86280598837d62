#pragma once

#include <cstdint>
#include <vector>

#include "qto/automation/address.hpp"

namespace qto::embedded {

struct ColumnLayout {
  float width = 0;  ///< in characters of the default font; 0 stands for the sheet's default
  bool hidden = false;
};

struct RowLayout {
  std::int32_t row = 0;
  float height = 0;  ///< in points; 0 stands for the sheet's default
  bool hidden = false;
};

/// Widths, heights and hidden state of a sheet's columns and rows. Only what differs from the
/// default is stored.
class SheetLayout {
 public:
  double default_width = 8.43;
  double default_height = 15;
  bool rows_hidden_by_default = false;

  ColumnLayout column(std::int32_t column) const noexcept;
  double column_width(std::int32_t column) const noexcept;
  /// Width on a screen of 96 dots to the inch in the common font; 0 for a hidden column.
  double column_pixels(std::int32_t column) const noexcept;
  /// In points; 0 for a hidden row.
  double row_height(std::int32_t row) const noexcept;
  RowLayout row(std::int32_t row) const noexcept;
  void set_columns(std::int32_t first, std::int32_t last, ColumnLayout layout);
  void set_row(RowLayout layout);
  bool column_hidden(std::int32_t column) const noexcept { return this->column(column).hidden; }
  bool row_hidden(std::int32_t row) const noexcept { return this->row(row).hidden; }
  void hide_columns(std::int32_t first, std::int32_t last, bool hidden);
  void hide_rows(std::int32_t first, std::int32_t last, bool hidden);
  /// Tells that a filter decides which of these rows are shown.
  void add_filter(std::int32_t first, std::int32_t last) { filters_.push_back({first, last}); }
  /// True for a hidden row that a filter is about, whoever hid it.
  bool row_filtered_out(std::int32_t row) const noexcept;

 private:
  struct FilteredRows {
    std::int32_t first, last;
  };
  std::vector<ColumnLayout> columns_;  // by column, as far as any differs
  std::vector<RowLayout> rows_;        // sorted by row
  std::vector<FilteredRows> filters_;
};

}  // namespace qto::embedded
