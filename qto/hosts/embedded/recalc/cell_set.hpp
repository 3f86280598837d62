#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "qto/automation/address.hpp"

namespace qto::embedded {

/// A set of cells of one sheet: per column a tree of bits, 64 to one, so that the first member in a
/// block is found in a few word operations, however large the block is.
class CellSet {
 public:
  void insert(CellPos pos);
  void erase(CellPos pos) noexcept;
  void insert(const Rect& rect);
  void erase(const Rect& rect) noexcept;
  bool contains(CellPos pos) const noexcept;
  /// The first member inside the block, column by column from top to bottom.
  std::optional<CellPos> next_in(const Rect& rect) const noexcept;
  bool touches(const Rect& rect) const noexcept { return next_in(rect).has_value(); }
  bool empty() const noexcept;
  void clear();

 private:
  static constexpr int bits = 64;
  static constexpr int page_rows = bits * bits;
  static constexpr int pages_per_column = max_rows / page_rows;
  struct Page {
    std::uint64_t summary = 0;  // which words are not 0
    std::array<std::uint64_t, bits> words{};
  };
  struct Column {
    std::array<std::uint64_t, pages_per_column / bits> summary{};  // which pages hold members
    std::vector<std::unique_ptr<Page>> pages;                      // as far down as needed
  };
  static constexpr int column_words = max_columns / bits;

  const Page* page_of(CellPos pos) const noexcept;
  /// The first row from `row` on that is in the column, both from 0; -1 when there is none.
  static std::int32_t next_row(const Column& column, std::int32_t row) noexcept;
  static std::int32_t next_in_page(const Page& page, std::int32_t row) noexcept;
  /// The first column from `column` on that holds members, both from 0; -1 when there is none.
  std::int32_t next_column(std::int32_t column) const noexcept;

  std::vector<Column> columns_;
  std::array<std::uint64_t, column_words> used_columns_{};
  std::array<std::uint64_t, column_words / bits> used_words_{};
};

}  // namespace qto::embedded
