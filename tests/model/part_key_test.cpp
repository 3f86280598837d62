#include "qto/model/part_key.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qto/automation/text.hpp"

namespace qto {
namespace {

TEST(PartKey, IsEqualExactlyWhenTheTextsAreButForCase) {
  const std::vector<std::string> texts = {
      "'C:\\M\\[Plan.xls]Inputs'!B7",
      "'c:\\m\\[plan.XLS]INPUTS'!b7",
      "'C:\\M\\[Plan.xls]Inputs'!B8",
      "'C:\\M\\[Plan.xls]Inputs'!C7",
      "'C:\\M\\[Plan.xls]Inputs'!B7:B9",
      "'C:\\M\\[Plan.xls]Inputs'!$B$7",
      "'C:\\M\\[Plan.xls]Inputs'!B07",
      "'C:\\M/[Plan.xls]Inputs'!B7",
      "'C:\\M/[Plan.xls]'!Rate",
      "'C:\\M/[Plan.xls]'!RATE",
      "[Plan.xls]Inputs!B7-'C:\\M/[Plan.xls]'!Rate",
      "[Plan.xls]Inputs!C7-'C:\\M/[Plan.xls]'!Rate",
      "'C:\\M/[Plan.xls]Report'(Chart 1)!B7",
      "'C:\\M/[Plan.xls]Report'(Chart 2)!B7",
      "'\\[]'!A1",
      "'!A1",
      "A1",
      "a1",
      "WINWORD|'D:\\x.doc'!Link1",
      "WINWORD|'D:\\x.doc'!A1",
      "",
  };
  for (const auto& a : texts) {
    for (const auto& b : texts) {
      const PartKey x = PartKey::of_text(a);
      const PartKey y = PartKey::of_text(b);
      EXPECT_EQ(x == y, text::equal_fold(a, b)) << a << " / " << b;
      if (x == y) {
        EXPECT_EQ(x.hash(), y.hash()) << a;
      }
    }
  }
}

TEST(PartKey, OfACellIsTheOneOfItsText) {
  const auto prefix = PartKey::prefix_number("'C:\\M\\[Plan.xls]Inputs'!");
  EXPECT_EQ(prefix, PartKey::prefix_number("'c:\\m\\[PLAN.xls]inputs'!"));
  for (const CellPos pos : {CellPos{1, 1}, CellPos{7, 2}, CellPos{max_rows, max_columns}})
    EXPECT_EQ(PartKey::of_cell(prefix, pos),
              PartKey::of_text("'C:\\M\\[Plan.xls]Inputs'!" + address_of(pos)));
}

TEST(PartKey, CopiesAndMoves) {
  PartKey a = PartKey::of_text("'\\[]'!Rate");
  const PartKey b = a;
  PartKey c = std::move(a);
  EXPECT_EQ(b, c);
  EXPECT_FALSE(a.is_set());
  c = PartKey();
  EXPECT_TRUE(b.is_set());
}

}  // namespace
}  // namespace qto
