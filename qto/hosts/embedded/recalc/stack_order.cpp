#include "qto/hosts/embedded/recalc/stack_order.hpp"

#include <algorithm>
#include <utility>

namespace qto::embedded {
namespace {

struct Place {
  std::size_t column, page, leaf, row;
  explicit Place(CellPos pos) noexcept
      : column(static_cast<std::size_t>(pos.column - 1)),
        page(static_cast<std::size_t>((pos.row - 1) >> 12)),
        leaf(static_cast<std::size_t>((pos.row - 1) >> 6 & 63)),
        row(static_cast<std::size_t>((pos.row - 1) & 63)) {}
};

}  // namespace

void StackOrder::set(CellPos pos, std::uint32_t number) {
  const Place place(pos);
  if (columns_.size() <= place.column) columns_.resize(place.column + 1);
  Column& column = columns_[place.column];
  if (column.size() <= place.page) column.resize(place.page + 1);
  if (!column[place.page]) column[place.page] = std::make_unique<Page>();
  Page& page = *column[place.page];
  if (!page.leaves[place.leaf]) page.leaves[place.leaf] = std::make_unique<Leaf>();
  Leaf& leaf = *page.leaves[place.leaf];
  leaf.numbers[place.row] = number;
  leaf.smallest = std::min(leaf.smallest, number);
  page.smallest = std::min(page.smallest, number);
}

void StackOrder::reset(CellPos pos) noexcept {
  const Place place(pos);
  Page& page = *columns_[place.column][place.page];
  Leaf& leaf = *page.leaves[place.leaf];
  const std::uint32_t number = std::exchange(leaf.numbers[place.row], none);
  if (number != leaf.smallest) return;
  leaf.smallest = *std::min_element(leaf.numbers.begin(), leaf.numbers.end());
  if (number != page.smallest) return;
  page.smallest = none;
  for (const auto& other : page.leaves)
    if (other) page.smallest = std::min(page.smallest, other->smallest);
}

std::uint32_t StackOrder::smallest_in_page(const Page& page, int first, int last) noexcept {
  if (first == 0 && last == rows * rows - 1) return page.smallest;
  std::uint32_t smallest = none;
  for (int l = first / rows; l <= last / rows; ++l) {
    const Leaf* leaf = page.leaves[l].get();
    if (!leaf || leaf->smallest >= smallest) continue;
    const int from = std::max(first - l * rows, 0);
    const int to = std::min(last - l * rows, rows - 1);
    smallest = std::min(
        smallest, *std::min_element(leaf->numbers.begin() + from, leaf->numbers.begin() + to + 1));
  }
  return smallest;
}

std::uint32_t StackOrder::smallest_in(const Rect& rect) const noexcept {
  std::uint32_t smallest = none;
  const int last_column = std::min<int>(rect.last.column, static_cast<int>(columns_.size()));
  constexpr int page_rows = rows * rows;
  for (int c = rect.first.column - 1; c < last_column; ++c)
    for (int p = (rect.first.row - 1) / page_rows; p <= (rect.last.row - 1) / page_rows; ++p) {
      if (static_cast<std::size_t>(p) >= columns_[c].size()) break;
      const Page* page = columns_[c][p].get();
      if (!page || page->smallest >= smallest) continue;
      const int first = std::max(rect.first.row - 1 - p * page_rows, 0);
      const int last = std::min(rect.last.row - 1 - p * page_rows, page_rows - 1);
      smallest = std::min(smallest, smallest_in_page(*page, first, last));
    }
  return smallest;
}

}  // namespace qto::embedded
