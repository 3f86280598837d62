#include "qto/hosts/embedded/book/cell_store.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace qto::embedded {
namespace {

std::string places(const CellStore& store, const Rect& rect) {
  std::string out;
  store.for_each(rect, [&](CellPos pos, const Cell&, FormulaId formula) {
    out += address_of(pos) + (formula ? "=" : "") + " ";
  });
  return out;
}

TEST(CellStore, OppositeCornersCostTwoBlocks) {
  CellStore store;
  store.touch({1, 1}).set_number(1);
  store.touch({max_rows, max_columns}).set_number(2);
  EXPECT_EQ(store.block_count(), 2);
  EXPECT_EQ(store.used(), Rect::sheet());
  EXPECT_EQ(places(store, Rect::sheet()), "A1 XFD1048576 ");
  EXPECT_EQ(store.find({2, 1}), nullptr);
}

TEST(CellStore, AFormulaIsACellUntilItIsErased) {
  CellStore store;
  store.set_formula({3, 2}, 7);
  EXPECT_EQ(store.cell_count(), 1);
  EXPECT_EQ(store.formula_count(), 1);
  EXPECT_EQ(places(store, Rect::sheet()), "B3= ");
  store.erase({3, 2});
  EXPECT_EQ(store.cell_count() + store.formula_count(), 0);
  EXPECT_EQ(store.formula({3, 2}), 0u);
  EXPECT_EQ(store.used(), Rect{});
}

TEST(CellStore, RevisionsTellColumnsOfAllStoresApart) {
  CellStore one;
  CellStore other;
  one.touch({1, 1});
  other.touch({1, 1});
  EXPECT_NE(one.revision(1), other.revision(1));
  const std::uint64_t before = one.revision(1);
  one.touch({500, 2});
  EXPECT_EQ(one.revision(1), before);
  one.touch({500, 1});
  EXPECT_NE(one.revision(1), before);
}

/// Cells at the seams of blocks (64 rows) and pages (4,096), against a map.
class AgainstAMap : public testing::Test {
 protected:
  AgainstAMap() {
    std::mt19937 random(1);
    const int rows[] = {1, 2, 63, 64, 65, 128, 4095, 4096, 4097, 8192, max_rows};
    for (int n = 0; n < 40; ++n) {
      const CellPos pos{rows[random() % std::size(rows)], static_cast<int>(random() % 5) + 1};
      store_.touch(pos).set_number(n);
      cells_[{pos.column, pos.row}] = n;
      if (n % 5 == 4) {
        const auto gone = cells_.begin();
        store_.erase({gone->first.second, gone->first.first});
        cells_.erase(gone);
      }
    }
  }
  CellStore store_;
  std::map<std::pair<int, int>, double> cells_;  // by column and row
};

TEST_F(AgainstAMap, EveryBlockOfCellsHoldsTheSame) {
  EXPECT_EQ(store_.cell_count(), std::ssize(cells_));
  const int rows[] = {1, 64, 65, 4096, 4097, max_rows};
  for (const int first : rows)
    for (const int last : rows) {
      if (first > last) continue;
      const Rect rect{{first, 2}, {last, 4}};
      std::string by_column;
      std::set<std::pair<int, int>> by_row;
      for (const auto& [place, number] : cells_)
        if (rect.contains({place.second, place.first})) {
          by_column += address_of(CellPos{place.second, place.first}) + " ";
          by_row.insert({place.second, place.first});
        }
      EXPECT_EQ(places(store_, rect), by_column);
      auto next = by_row.begin();
      store_.for_each_by_row(rect, [&](CellPos pos, const Cell& cell, FormulaId) {
        ASSERT_NE(next, by_row.end());
        EXPECT_EQ(std::pair(pos.row, pos.column), *next++);
        EXPECT_EQ(cell.number(), (cells_[{pos.column, pos.row}]));
      });
      EXPECT_EQ(next, by_row.end());
    }
}

TEST_F(AgainstAMap, ColumnsAreWalkedDown) {
  for (int column = 1; column <= 5; ++column) {
    CellPos at = store_.next_in_column({1, column}, max_rows);
    int last = 0;
    for (const auto& [place, number] : cells_) {
      if (place.first != column) continue;
      EXPECT_EQ(at, (CellPos{place.second, column}));
      last = at.row;
      at = last < max_rows ? store_.next_in_column({last + 1, column}, max_rows)
                           : CellPos{0, column};
    }
    EXPECT_EQ(at.row, 0);
    EXPECT_EQ(store_.last_row(column, column), last);
  }
}

TEST(CellStore, AWalkEndsWhenTheVisitorHasEnough) {
  CellStore store;
  for (int row = 1; row <= 100; ++row) store.touch({row, 1});
  int seen = 0;
  EXPECT_FALSE(
      store.for_each(Rect::sheet(), [&](CellPos, const Cell&, FormulaId) { return ++seen < 70; }));
  EXPECT_EQ(seen, 70);
}

}  // namespace
}  // namespace qto::embedded
