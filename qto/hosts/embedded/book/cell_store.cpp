#include "qto/hosts/embedded/book/cell_store.hpp"

#include <algorithm>
#include <atomic>

namespace qto::embedded {

/// Books of several threads count together: a number that two stores share would let a result
/// derived from one pass for the other's.
std::uint64_t CellStore::next_id() noexcept {
  static std::atomic<std::uint32_t> last = 0;
  return ++last;
}

const CellStore::Block* CellStore::find_block(std::int32_t row,
                                              std::int32_t column) const noexcept {
  if (column > last_column()) return nullptr;
  const Column& pages = columns_[column - 1];
  const std::size_t block = static_cast<std::size_t>(row - 1) / block_rows;
  const std::size_t page = block / blocks_per_page;
  if (page >= pages.size() || !pages[page]) return nullptr;
  return pages[page]->blocks[block % blocks_per_page].get();
}

CellStore::Block& CellStore::touch_block(std::int32_t row, std::int32_t column) {
  if (column > last_column()) {
    columns_.resize(column);
    revisions_.resize(column);
  }
  ++revisions_[column - 1];
  Column& pages = columns_[column - 1];
  const std::size_t block = static_cast<std::size_t>(row - 1) / block_rows;
  const std::size_t page = block / blocks_per_page;
  if (page >= pages.size()) pages.resize(page + 1);
  if (!pages[page]) pages[page] = std::make_unique<Page>();
  auto& slot = pages[page]->blocks[block % blocks_per_page];
  if (!slot) {
    slot = std::make_unique<Block>();
    ++blocks_;
  }
  return *slot;
}

const Cell* CellStore::find(CellPos pos) const noexcept {
  const Block* block = find_block(pos.row, pos.column);
  const int offset = (pos.row - 1) % block_rows;
  return block && (block->used >> offset & 1) ? &block->cells[offset] : nullptr;
}

Cell& CellStore::touch(CellPos pos) {
  Block& block = touch_block(pos.row, pos.column);
  const int offset = (pos.row - 1) % block_rows;
  if (!(block.used >> offset & 1)) {
    block.used |= std::uint64_t{1} << offset;
    ++cells_;
  }
  return block.cells[offset];
}

FormulaId CellStore::formula(CellPos pos) const noexcept {
  const Block* block = find_block(pos.row, pos.column);
  return block && block->formulas ? (*block->formulas)[(pos.row - 1) % block_rows] : 0;
}

void CellStore::set_formula(CellPos pos, FormulaId id) {
  if (id == 0 && formula(pos) == 0) return;
  touch(pos);
  Block& block = touch_block(pos.row, pos.column);
  if (!block.formulas) block.formulas = std::make_unique<std::array<FormulaId, block_rows>>();
  FormulaId& slot = (*block.formulas)[(pos.row - 1) % block_rows];
  formulas_ += (id != 0) - (slot != 0);
  slot = id;
}

void CellStore::erase(CellPos pos) {
  if (!find(pos)) return;
  set_formula(pos, 0);
  Block& block = touch_block(pos.row, pos.column);
  const int offset = (pos.row - 1) % block_rows;
  block.cells[offset] = Cell();
  block.used &= ~(std::uint64_t{1} << offset);
  --cells_;
}

Rect CellStore::used() const noexcept {
  Rect box{{max_rows, max_columns}, {1, 1}};
  bool any = false;
  for (std::int32_t column = 1; column <= last_column(); ++column) {
    const Column& pages = columns_[column - 1];
    for (std::size_t page = 0; page < pages.size(); ++page) {
      if (!pages[page]) continue;
      for (int b = 0; b < blocks_per_page; ++b) {
        const Block* block = pages[page]->blocks[b].get();
        if (!block || !block->used) continue;
        const int base = (static_cast<int>(page) * blocks_per_page + b) * block_rows;
        any = true;
        box.first.row = std::min(box.first.row, base + std::countr_zero(block->used) + 1);
        box.last.row = std::max(box.last.row, base + block_rows - std::countl_zero(block->used));
        box.first.column = std::min(box.first.column, column);
        box.last.column = column;
      }
    }
  }
  return any ? box : Rect{};
}

std::int32_t CellStore::last_row(std::int32_t first_column,
                                 std::int32_t last_column) const noexcept {
  std::int32_t last = 0;
  for (std::int32_t c = first_column; c <= std::min(last_column, this->last_column()); ++c) {
    const Column& pages = columns_[c - 1];
    constexpr std::int32_t page_rows = blocks_per_page * block_rows;
    auto number = static_cast<std::int32_t>(pages.size()) * blocks_per_page - 1;
    for (; number >= 0 && (number + 1) * block_rows > last; --number) {
      const auto& page = pages[number * block_rows / page_rows];
      const Block* block = page ? page->blocks[number % blocks_per_page].get() : nullptr;
      if (!block || !block->used) continue;
      last = std::max(last, (number + 1) * block_rows - std::countl_zero(block->used));
      break;
    }
  }
  return last;
}

CellPos CellStore::next_in_column(CellPos pos, std::int32_t last_row) const noexcept {
  while (pos.row <= last_row && pos.column <= last_column()) {
    const Column& pages = columns_[pos.column - 1];
    const std::size_t number = static_cast<std::size_t>(pos.row - 1) / block_rows;
    const std::size_t page = number / blocks_per_page;
    if (page >= pages.size()) break;
    if (!pages[page]) {
      pos.row = static_cast<std::int32_t>(page + 1) * blocks_per_page * block_rows + 1;
      continue;
    }
    const Block* block = pages[page]->blocks[number % blocks_per_page].get();
    const int offset = (pos.row - 1) % block_rows;
    const std::uint64_t bits = block ? block->used >> offset : 0;
    if (!bits) {
      pos.row = static_cast<std::int32_t>(number + 1) * block_rows + 1;
      continue;
    }
    pos.row += std::countr_zero(bits);
    if (pos.row > last_row) break;
    return pos;
  }
  return {0, pos.column};
}

}  // namespace qto::embedded
