#include "qto/hosts/embedded/recalc/cell_set.hpp"

#include <algorithm>
#include <bit>
#include <span>

namespace qto::embedded {
namespace {

constexpr std::uint64_t bit(std::int32_t index) noexcept {
  return std::uint64_t{1} << (index & 63);
}
/// The bits from `index` on within its word.
constexpr std::uint64_t from(std::int32_t index) noexcept {
  return ~std::uint64_t{0} << (index & 63);
}

/// The first set bit from `index` on, -1 when there is none.
std::int32_t next_bit(std::span<const std::uint64_t> words, std::int32_t index) noexcept {
  auto word = static_cast<std::size_t>(index >> 6);
  if (word >= words.size()) return -1;
  std::uint64_t left = words[word] & from(index);
  while (left == 0) {
    if (++word == words.size()) return -1;
    left = words[word];
  }
  return static_cast<std::int32_t>(word * 64) + std::countr_zero(left);
}

}  // namespace

const CellSet::Page* CellSet::page_of(CellPos pos) const noexcept {
  const auto column = static_cast<std::size_t>(pos.column - 1);
  const auto page = static_cast<std::size_t>((pos.row - 1) / page_rows);
  if (column >= columns_.size() || page >= columns_[column].pages.size()) return nullptr;
  return columns_[column].pages[page].get();
}

bool CellSet::contains(CellPos pos) const noexcept {
  const Page* page = page_of(pos);
  const std::int32_t row = (pos.row - 1) % page_rows;
  return page && (page->words[row >> 6] & bit(row)) != 0;
}

void CellSet::insert(CellPos pos) {
  const std::int32_t c = pos.column - 1;
  if (columns_.size() <= static_cast<std::size_t>(c)) columns_.resize(c + 1);
  Column& column = columns_[c];
  const std::int32_t p = (pos.row - 1) / page_rows;
  if (column.pages.size() <= static_cast<std::size_t>(p)) column.pages.resize(p + 1);
  if (!column.pages[p]) column.pages[p] = std::make_unique<Page>();
  Page& page = *column.pages[p];
  const std::int32_t row = (pos.row - 1) % page_rows;
  page.words[row >> 6] |= bit(row);
  page.summary |= bit(row >> 6);
  column.summary[p >> 6] |= bit(p);
  used_columns_[c >> 6] |= bit(c);
  used_words_[c >> 12] |= bit(c >> 6);
}

void CellSet::erase(CellPos pos) noexcept {
  if (!contains(pos)) return;
  const std::int32_t c = pos.column - 1;
  const std::int32_t p = (pos.row - 1) / page_rows;
  const std::int32_t row = (pos.row - 1) % page_rows;
  Column& column = columns_[c];
  Page& page = *column.pages[p];
  if (page.words[row >> 6] &= ~bit(row)) return;
  if (page.summary &= ~bit(row >> 6)) return;
  column.summary[p >> 6] &= ~bit(p);
  if (std::any_of(column.summary.begin(), column.summary.end(), [](auto word) { return word; }))
    return;
  if (used_columns_[c >> 6] &= ~bit(c)) return;
  used_words_[c >> 12] &= ~bit(c >> 6);
}

void CellSet::insert(const Rect& rect) {
  for (std::int32_t column = rect.first.column; column <= rect.last.column; ++column)
    for (std::int32_t row = rect.first.row; row <= rect.last.row; ++row)
      insert(CellPos{row, column});
}

void CellSet::erase(const Rect& rect) noexcept {
  while (const auto member = next_in(rect)) erase(*member);
}

std::int32_t CellSet::next_in_page(const Page& page, std::int32_t row) noexcept {
  const std::int32_t word = row >> 6;
  if (const std::uint64_t left = page.words[word] & from(row))
    return (word << 6) + std::countr_zero(left);
  if (word == bits - 1) return -1;
  const std::uint64_t words = page.summary & from(word + 1);
  if (words == 0) return -1;
  const std::int32_t found = std::countr_zero(words);
  return (found << 6) + std::countr_zero(page.words[found]);
}

std::int32_t CellSet::next_row(const Column& column, std::int32_t row) noexcept {
  std::int32_t page = row / page_rows;
  if (static_cast<std::size_t>(page) < column.pages.size() && column.pages[page]) {
    const std::int32_t found = next_in_page(*column.pages[page], row % page_rows);
    if (found >= 0) return page * page_rows + found;
  }
  page = next_bit(column.summary, page + 1);
  return page < 0 ? -1 : page * page_rows + next_in_page(*column.pages[page], 0);
}

std::int32_t CellSet::next_column(std::int32_t column) const noexcept {
  const std::int32_t word = column >> 6;
  if (word >= column_words) return -1;
  if (const std::uint64_t left = used_columns_[word] & from(column))
    return (word << 6) + std::countr_zero(left);
  const std::int32_t next_word = next_bit(used_words_, word + 1);
  return next_word < 0 ? -1 : (next_word << 6) + std::countr_zero(used_columns_[next_word]);
}

std::optional<CellPos> CellSet::next_in(const Rect& rect) const noexcept {
  if (rect.is_cell()) return contains(rect.first) ? std::optional(rect.first) : std::nullopt;
  for (std::int32_t column = next_column(rect.first.column - 1);
       column >= 0 && column < rect.last.column; column = next_column(column + 1)) {
    const std::int32_t row = next_row(columns_[column], rect.first.row - 1);
    if (row >= 0 && row < rect.last.row) return CellPos{row + 1, column + 1};
  }
  return std::nullopt;
}

bool CellSet::empty() const noexcept {
  return std::none_of(used_words_.begin(), used_words_.end(), [](auto word) { return word != 0; });
}

void CellSet::clear() { *this = CellSet(); }

}  // namespace qto::embedded
