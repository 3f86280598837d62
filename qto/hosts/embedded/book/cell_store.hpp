#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/book/cell.hpp"

namespace qto::embedded {

/// The cells of one sheet: per column, blocks of 64 rows that exist only where something is. Two
/// cells in opposite corners cost two blocks, a dense column about 20 bytes a cell.
class CellStore {
 public:
  /// The cell, or null where nothing was ever stored.
  const Cell* find(CellPos pos) const noexcept;
  /// The cell, made when it is not there yet. `pos` is on the grid.
  Cell& touch(CellPos pos);
  /// The formula of a cell; 0 when it holds none.
  FormulaId formula(CellPos pos) const noexcept;
  void set_formula(CellPos pos, FormulaId id);
  /// Takes value, style and formula away.
  void erase(CellPos pos);

  /// Number of stored cells (styled blanks included) and of cells with a formula.
  std::int64_t cell_count() const noexcept { return cells_; }
  std::int64_t formula_count() const noexcept { return formulas_; }
  /// Number of blocks of 64 rows that are allocated: what the store costs.
  std::int64_t block_count() const noexcept { return blocks_; }
  /// The smallest block that holds every stored cell; A1 for an empty sheet.
  Rect used() const noexcept;
  /// The last column that holds a cell, 0 for an empty sheet.
  std::int32_t last_column() const noexcept { return static_cast<std::int32_t>(columns_.size()); }

  /// A number that changes whenever a cell of the column may have been written, and that no other
  /// column of any store has.
  std::uint64_t revision(std::int32_t column) const noexcept {
    return id_ << 32 | (column <= last_column() ? revisions_[column - 1] : 0);
  }

  /// Calls visit(CellPos, const Cell&, FormulaId) for the stored cells inside `rect`, column by
  /// column from top to bottom; a visitor that answers is stopped by false, and so is the walk. The
  /// store must not change meanwhile.
  template <class Visit>
  bool for_each(const Rect& rect, Visit&& visit) const;
  /// Calls it for all of them, row by row from left to right.
  template <class Visit>
  void for_each_by_row(const Rect& rect, Visit&& visit) const;
  /// The first stored cell at or below `pos` in its column and not below `last_row`; row 0 if none.
  CellPos next_in_column(CellPos pos, std::int32_t last_row) const noexcept;
  /// The last row in which the columns hold a cell; 0 if none does.
  std::int32_t last_row(std::int32_t first_column, std::int32_t last_column) const noexcept;

 private:
  static constexpr int block_rows = 64;
  static constexpr int blocks_per_page = 64;
  struct Block {
    std::uint64_t used = 0;
    std::array<Cell, block_rows> cells;
    std::unique_ptr<std::array<FormulaId, block_rows>> formulas;
  };
  struct Page {
    std::array<std::unique_ptr<Block>, blocks_per_page> blocks;
  };
  /// Pages of 4,096 rows, as many as the column reaches down to.
  using Column = std::vector<std::unique_ptr<Page>>;

  const Block* find_block(std::int32_t row, std::int32_t column) const noexcept;
  Block& touch_block(std::int32_t row, std::int32_t column);

  static std::uint64_t next_id() noexcept;

  const std::uint64_t id_ = next_id();
  std::vector<Column> columns_;
  std::vector<std::uint32_t> revisions_;  // by column
  std::int64_t cells_ = 0;
  std::int64_t formulas_ = 0;
  std::int64_t blocks_ = 0;
};

template <class Visit>
void CellStore::for_each_by_row(const Rect& rect, Visit&& visit) const {
  const std::int32_t last_column = std::min(rect.last.column, this->last_column());
  std::size_t pages = 0;
  for (std::int32_t column = rect.first.column; column <= last_column; ++column)
    pages = std::max(pages, columns_[column - 1].size());
  const int last_row =
      std::min(rect.last.row, static_cast<int>(pages) * block_rows * blocks_per_page);
  std::vector<std::pair<std::int32_t, const Block*>> blocks;
  for (int first = (rect.first.row - 1) / block_rows * block_rows + 1; first <= last_row;
       first += block_rows) {
    blocks.clear();
    std::uint64_t used = 0;
    for (std::int32_t column = rect.first.column; column <= last_column; ++column)
      if (const Block* block = find_block(first, column)) {
        blocks.emplace_back(column, block);
        used |= block->used;
      }
    for (; used; used &= used - 1) {
      const int offset = std::countr_zero(used);
      const int row = first + offset;
      if (row < rect.first.row || row > rect.last.row) continue;
      for (const auto& [column, block] : blocks)
        if (block->used >> offset & 1)
          visit(CellPos{row, column}, block->cells[offset],
                block->formulas ? (*block->formulas)[offset] : FormulaId{0});
    }
  }
}

template <class Visit>
bool CellStore::for_each(const Rect& rect, Visit&& visit) const {
  const std::int32_t last_column = std::min(rect.last.column, this->last_column());
  for (std::int32_t column = rect.first.column; column <= last_column; ++column) {
    const Column& pages = columns_[column - 1];
    const int last_row = rect.last.row - 1;
    for (int base = (rect.first.row - 1) / block_rows * block_rows; base <= last_row;
         base += block_rows) {
      const std::size_t page = base / (block_rows * blocks_per_page);
      if (page >= pages.size()) break;
      if (!pages[page]) {
        base = (static_cast<int>(page) + 1) * block_rows * blocks_per_page - block_rows;
        continue;
      }
      const Block* block = pages[page]->blocks[base / block_rows % blocks_per_page].get();
      if (!block) continue;
      std::uint64_t bits = block->used;
      if (base < rect.first.row - 1) bits &= ~std::uint64_t{0} << (rect.first.row - 1 - base);
      if (base + block_rows > rect.last.row)
        bits &= ~std::uint64_t{0} >> (base + block_rows - rect.last.row);
      for (; bits; bits &= bits - 1) {
        const int offset = std::countr_zero(bits);
        const CellPos pos{base + offset + 1, column};
        const FormulaId formula = block->formulas ? (*block->formulas)[offset] : FormulaId{0};
        if constexpr (std::is_same_v<decltype(visit(pos, block->cells[offset], formula)), bool>) {
          if (!visit(pos, block->cells[offset], formula)) return false;
        } else {
          visit(pos, block->cells[offset], formula);
        }
      }
    }
  }
  return true;
}

}  // namespace qto::embedded
