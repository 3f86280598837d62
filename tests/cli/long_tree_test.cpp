#include <gmock/gmock.h>

#include "tests/cli/run_command.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string row(int number, const std::string& cells) {
  return "<row r=\"" + std::to_string(number) + "\">" + cells + "</row>";
}

TEST(LongTree, gathers_long_blocks_of_constants_on_one_line) {
  BookFile book;
  std::string rows =
      row(1, "<c r=\"A1\"><f>SUM(B2:C31)+D1</f><v>1</v></c><c r=\"D1\"><v>5</v></c>");
  for (int i = 2; i <= 31; ++i) {
    const std::string n = std::to_string(i);
    // Two cells are left empty.
    rows +=
        row(i, i == 7 ? "" : "<c r=\"B" + n + "\"><v>1</v></c><c r=\"C" + n + "\"><v>2</v></c>");
  }
  book.cells(rows);
  const TemporaryFile file("block.xlsx", book.bytes());
  const Outcome brief = run_qto({"tree", file.path(), "A1"});
  EXPECT_EQ(brief.out,
            "Sheet1!A1  =SUM(B2:C31)+D1 → 1\n"
            "├─ Sheet1!B2:C31  58 constants, 2 empty cells\n"
            "└─ Sheet1!D1  5\n"
            "\n"
            "1 formula, 61 other items, 1 level\n");
  const Outcome full = run_qto({"tree", file.path(), "A1", "--full"});
  EXPECT_THAT(full.out, Not(HasSubstr("constants")));
  EXPECT_THAT(full.out, HasSubstr("Sheet1!B7  (empty)"));
  EXPECT_THAT(full.out, HasSubstr("Sheet1!C31  "));
}

TEST(LongList, gathers_empty_cells_on_one_line) {
  BookFile book;
  book.cells(row(1, "<c r=\"A1\"><f>SUM(B:C)</f><v>9</v></c><c r=\"B1\"><v>4</v></c>") +
             row(2, "<c r=\"C2\"><v>5</v></c>"));
  const TemporaryFile file("columns.xlsx", book.bytes());
  EXPECT_EQ(run_qto({"inputs", file.path(), "A1"}).out,
            "Inputs of Sheet1!A1  =SUM(B:C) → 9\n"
            "\n"
            "Sheet1!B1           4\n"
            "Sheet1!C1           (empty)\n"
            "Sheet1!B2           (empty)\n"
            "Sheet1!C2           5\n"
            "Sheet1!B3:C1048576  2,097,148 empty cells\n"
            "\n"
            "2 inputs and 2,097,150 empty cells\n");
}

TEST(LongTree, stays_readable_at_any_depth) {
  BookFile book;
  std::string rows = row(1, "<c r=\"A1\"><v>1</v></c>");
  constexpr int depth = 5'000;
  for (int i = 2; i <= depth; ++i)
    rows += row(
        i, "<c r=\"A" + std::to_string(i) + "\"><f>A" + std::to_string(i - 1) + "</f><v>1</v></c>");
  book.cells(rows);
  const TemporaryFile file("chain.xlsx", book.bytes());
  const std::string start = "A" + std::to_string(depth);
  const Outcome outcome = run_qto({"tree", file.path(), start});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("[level 13] Sheet1!A4987"));
  EXPECT_THAT(outcome.out, HasSubstr("[level 4999] Sheet1!A1"));
  EXPECT_THAT(outcome.out, HasSubstr("4,999 formulas, 1 other item, 4,999 levels"));
  EXPECT_LT(outcome.out.size(), 600'000u);
  EXPECT_EQ(run_qto({"tree", file.path(), start, "--json"}).status, 0);
}

TEST(LongTree, shows_no_control_characters_and_cuts_long_formulas) {
  BookFile book;
  const std::string tail(200, '1');
  book.cells(row(1, "<c r=\"A1\"><f>B1&amp;\"" + tail +
                        "\"</f><v>1</v></c><c r=\"B1\" "
                        "t=\"inlineStr\"><is><t>two\nlines_x001B_[31m</t></is></c>"));
  const TemporaryFile file("texts.xlsx", book.bytes());
  const Outcome brief = run_qto({"tree", file.path(), "A1"});
  EXPECT_THAT(brief.out, HasSubstr("two lines"));
  EXPECT_THAT(brief.out, Not(HasSubstr("\x1b")));
  EXPECT_THAT(brief.out, HasSubstr("1111… → "));
  EXPECT_THAT(run_qto({"tree", file.path(), "A1", "--full"}).out, HasSubstr(tail));
}

TEST(LongList, tells_texts_that_read_as_numbers_from_numbers) {
  BookFile book;
  book.cells(row(1,
                 "<c r=\"A1\"><f>SUM(B1:D1)</f><v>7</v></c><c r=\"B1\"><v>7</v></c>"
                 "<c r=\"C1\" t=\"inlineStr\"><is><t>008</t></is></c>"
                 "<c r=\"D1\" t=\"inlineStr\"><is><t>n/a</t></is></c>"));
  const TemporaryFile file("numbers.xlsx", book.bytes());
  EXPECT_THAT(run_qto({"inputs", file.path(), "A1"}).out,
              HasSubstr("Sheet1!B1  7\nSheet1!C1  \"008\"\nSheet1!D1  n/a\n"));
}

}  // namespace
}  // namespace qto::test
