#include <gtest/gtest.h>

#include <random>

#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

/// Column A as it was written, to look through by hand.
struct Written {
  std::string entry;  // as SmallBook::fill takes it
  bool number = false;
};

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

/// What is looked for so often that the column gets an index must be found where it stands, also
/// after cells were written in between.
TEST(RepeatedLookups, FindWhatALookThroughTheColumnFinds) {
  std::mt19937 random(7);
  SmallBook book;
  constexpr int rows = 200;
  std::vector<Written> column(rows);
  const auto write = [&](int row) {
    const int pick = static_cast<int>(random() % 60);
    Written& cell = column[row];
    cell = pick % 3 == 0   ? Written{std::to_string(pick), true}
           : pick % 3 == 1 ? Written{(pick % 2 ? "key" : "KEY") + std::to_string(pick / 6)}
                           : Written{};
    const std::string at = std::to_string(row + 1);
    book.fill("A" + at + "=" + cell.entry + "; B" + at + "=" + std::to_string(row));
  };
  for (int row = 0; row < rows; ++row) write(row);
  for (int round = 0; round < 300; ++round) {
    if (round % 40 == 39) write(static_cast<int>(random() % rows));
    const bool text = random() % 2;
    const std::string wanted =
        text ? "Key" + std::to_string(random() % 11) : std::to_string(random() % 60);
    std::string first = "#N/A";
    int count = 0, sum = 0;
    for (int row = 0; row < rows; ++row) {
      if (column[row].number == text || column[row].entry.empty()) continue;
      if (upper(column[row].entry) != upper(wanted)) continue;
      if (count++ == 0) first = std::to_string(row + 1);
      sum += row;
    }
    const std::string quoted = text ? '"' + wanted + '"' : wanted;
    ASSERT_EQ(book.run("MATCH(" + quoted + ",A1:A200,0)"), first) << round;
    ASSERT_EQ(book.run("COUNTIF(A1:A200," + quoted + ")"), std::to_string(count)) << round;
    ASSERT_EQ(book.run("SUMIF(A1:A200," + quoted + ",B1:B200)"), std::to_string(sum)) << round;
    ASSERT_EQ(book.run("SUMIFS(B1:B200,A1:A200," + quoted + ",B1:B200,\">=0\")"),
              std::to_string(sum))
        << round;
  }
}

TEST(RepeatedLookups, CountTextsThatReadAsTheNumber) {
  SmallBook book("A1=5; A2=\"5\"; A3=\"5.0\"; A40=x");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(book.run("COUNTIF(A1:A40,5)"), "3");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(book.run("MATCH(\"5\",A1:A40,0)"), "2");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(book.run("COUNTIF(A1:A40,\"X\")"), "1");
}

}  // namespace
}  // namespace qto::embedded
