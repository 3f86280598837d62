#include "qto/hosts/embedded/recalc/cell_set.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "qto/hosts/embedded/recalc/stack_order.hpp"

namespace qto::embedded {
namespace {

TEST(CellSetTest, CornersOfTheGrid) {
  CellSet set;
  EXPECT_TRUE(set.empty());
  const CellPos corners[] = {{1, 1}, {1, max_columns}, {max_rows, 1}, {max_rows, max_columns}};
  for (const CellPos pos : corners) set.insert(pos);
  for (const CellPos pos : corners) EXPECT_TRUE(set.contains(pos));
  EXPECT_FALSE(set.contains({2, 1}));
  EXPECT_EQ(set.next_in({{2, 1}, {max_rows, max_columns}}), (CellPos{max_rows, 1}));
  EXPECT_EQ(set.next_in({{1, 2}, {max_rows, max_columns}}), (CellPos{1, max_columns}));
  EXPECT_EQ(set.next_in({{2, 2}, {max_rows - 1, max_columns}}), std::nullopt);
  for (const CellPos pos : corners) set.erase(pos);
  EXPECT_TRUE(set.empty());
  EXPECT_EQ(set.next_in(Rect::sheet()), std::nullopt);
}

// Against a plain set: random cells that lie close to the borders of words and pages.
TEST(CellSetTest, AgreesWithAPlainSet) {
  std::mt19937 random(7);
  constexpr std::int32_t rows[] = {1, 2, 63, 64, 65, 4095, 4096, 4097, 8192, 262144, max_rows};
  constexpr std::int32_t columns[] = {1, 2, 63, 64, 65, 4096, 4097, max_columns};
  const auto pick = [&](const auto& list) { return list[random() % std::size(list)]; };
  const auto less = [](CellPos a, CellPos b) {
    return a.column != b.column ? a.column < b.column : a.row < b.row;
  };
  CellSet set;
  std::set<CellPos, decltype(less)> plain(less);
  for (int step = 0; step < 20'000; ++step) {
    const CellPos pos{pick(rows), pick(columns)};
    if (random() % 2) {
      set.insert(pos);
      plain.insert(pos);
    } else {
      set.erase(pos);
      plain.erase(pos);
    }
    const CellPos other{pick(rows), pick(columns)};
    const Rect rect{{std::min(pos.row, other.row), std::min(pos.column, other.column)},
                    {std::max(pos.row, other.row), std::max(pos.column, other.column)}};
    const auto found =
        std::find_if(plain.begin(), plain.end(), [&](CellPos p) { return rect.contains(p); });
    ASSERT_EQ(set.next_in(rect), found == plain.end() ? std::nullopt : std::optional(*found));
    ASSERT_EQ(set.contains(other), plain.contains(other));
  }
}

TEST(StackOrderTest, SmallestInABlockAgreesWithLookingAtEachCell) {
  std::mt19937 random(11);
  constexpr std::int32_t rows[] = {1, 2, 64, 65, 4096, 4097, 5000, max_rows};
  const auto pick = [&] {
    return CellPos{rows[random() % std::size(rows)], static_cast<std::int32_t>(random() % 4 + 1)};
  };
  StackOrder order;
  std::map<CellPos, std::uint32_t> plain;
  for (std::uint32_t step = 1; step < 20'000; ++step) {
    const CellPos pos = pick();
    if (plain.contains(pos)) {
      order.reset(pos);
      plain.erase(pos);
    } else {
      order.set(pos, step);
      plain[pos] = step;
    }
    const CellPos a = pick(), b = pick();
    const Rect rect{{std::min(a.row, b.row), std::min(a.column, b.column)},
                    {std::max(a.row, b.row), std::max(a.column, b.column)}};
    std::uint32_t expected = StackOrder::none;
    for (const auto& [cell, number] : plain)
      if (rect.contains(cell)) expected = std::min(expected, number);
    ASSERT_EQ(order.smallest_in(rect), expected);
  }
}

}  // namespace
}  // namespace qto::embedded
