#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/book/sheet.hpp"
#include "qto/hosts/embedded/xlsx/cell_formulas.hpp"
#include "qto/hosts/embedded/xlsx/load_context.hpp"
#include "qto/hosts/embedded/xlsx/string_item.hpp"
#include "qto/hosts/embedded/xlsx/xml_events.hpp"

namespace qto::embedded {

/// Reads the rows and cells of a worksheet part into the sheet. Handles what the elements below
/// sheetData say; nothing is allocated per cell.
class CellReader {
 public:
  CellReader(LoadContext& context, Sheet& sheet);

  void start(std::string_view name, const Attributes& attributes);
  void end(std::string_view name);
  void text(std::string_view piece);
  /// After the last row: what could only be settled with all of the sheet known.
  void finish();

 private:
  /// What the value element holds.
  enum class Content : std::uint8_t { number, shared, text, inline_text, boolean, error, date };

  void start_row(const Attributes& attributes);
  void start_cell(const char* const* attributes);
  void end_cell();
  void store_value(Cell& cell);
  void store_number(Cell& cell);
  void store_text(Cell& cell);
  void forget_earlier(Cell& cell);
  static Content content_of(std::string_view type) noexcept;
  static StyleId style_of(std::string_view number) noexcept;

  LoadContext& context_;
  Sheet& sheet_;
  CellFormulas formulas_;
  std::vector<RowLayout> rows_;

  std::int32_t row_ = 0;  ///< of the row element being read, 0 when it is not on the grid
  std::int32_t latest_row_ = 0;
  std::int32_t column_ = 0;  ///< of the latest cell of the row
  CellPos furthest_{0, 0};   ///< in reading order

  CellPos at_;
  StyleId style_ = 0;
  Content content_ = Content::number;
  bool in_cell_ = false;
  bool has_value_ = false;
  bool in_inline_ = false;
  std::string value_;
  StringItem inline_;
  std::string* sink_ = nullptr;  ///< where character data goes
  std::size_t sink_limit_ = 0;
};

}  // namespace qto::embedded
