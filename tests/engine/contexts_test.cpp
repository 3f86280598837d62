#include <gtest/gtest.h>

#include "tests/support/book_on_disk.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

/// Everything that the engine asks an application for by itself: names, lookups, conversions,
/// books.
constexpr std::string_view plan =
    "A1=1; A2=2; A3=3; B1=2; name Rate=Sheet1!$A$3; "
    "C1==VLOOKUP(B1,A1:B3,1,FALSE)+INDIRECT(\"R3C1\",FALSE)+Rate+SUMIF(A1:A3,\">2\")";
constexpr Options minimal{.ParseIf = 1, .ParseLookup = 1, .ParseSumif = 1, .ParseIndirect = 3};

TEST(TwoApplications, AnswerAsIfEachWereAlone) {
  Books alone(plan);
  const auto expected = inputs(alone, "C1", minimal);
  EXPECT_NE(expected, "none");
  Books first(plan);
  Books second("A1=7; C1==A1");
  second.app.Workbooks()->Add();
  const auto a = drill_from(first, "C1", minimal);
  const auto b = drill_from(second, "C1", minimal);
  const Reports reports;
  a->FindInputs();
  b->FindInputs();
  EXPECT_EQ(listed(a->InputCells()), expected);
  EXPECT_EQ(listed(b->InputCells()), "A1");
  EXPECT_EQ(reports.text(), "");
  for (const auto& [drill, books] : {std::pair{a, &first}, std::pair{b, &second}}) {
    EXPECT_EQ(drill->StartModelPart()->ExcelApplication(), books->app.ref());
    drill->InputCells()->for_each(
        [&](const ModelPart& part) { EXPECT_EQ(part.ExcelApplication(), books->app.ref()); });
  }
}

TEST(TwoApplications, ADrillStartedInAnEventOfAnotherLeavesItAlone) {
  Books first("A1=1; B1==A1; C1==B1+A1");
  Books second("A1=7; C1==A1");
  const auto a = drill_from(first, "C1");
  std::string inner;
  a->BeforeGetPrecedents.add([&](auto& part, bool&) {
    if (part->AddressShort() == "B1") inner = inputs(second, "C1");
  });
  a->FindInputs();
  EXPECT_EQ(inner, "A1");
  EXPECT_EQ(listed(a->InputCells()), "A1");
}

/// A formula in each of two applications refers to the same closed book.
class TwoApplicationsAndABook : public testing::Test {
 protected:
  TwoApplicationsAndABook() {
    folder_.put_book("Far.xlsx", "A1=1");
    const std::string formula = "C1=='" + folder_.path() + "/[Far.xlsx]Sheet1'!A1";
    for (Books& books : books_) books.add(formula);
  }
  Ref<DrillDown> asking(Books& books, bool answer) {
    const auto drill = drill_from(books, "C1");
    drill->AskToOpenBook.add([this, answer](auto&, bool& choice) {
      ++asked_;
      choice = answer;
    });
    return drill;
  }

  BookFolder folder_;
  Books books_[2];
  int asked_ = 0;
};

TEST_F(TwoApplicationsAndABook, EachAreAskedForIt) {
  const auto declining = asking(books_[0], false);
  const auto opening = asking(books_[1], true);
  declining->FindInputs();
  opening->FindInputs();
  EXPECT_EQ(asked_, 2);
  EXPECT_EQ(listed(declining->InputCells()), "?[Far.xlsx]A1");
  EXPECT_EQ(listed(opening->InputCells()), "[Far.xlsx]A1");
  EXPECT_EQ(declining->BooksOpened()->Count(), 0);
  EXPECT_EQ(opening->BooksNotOpened()->Count(), 0);
  declining->BooksOpened()->CloseBooks();
  EXPECT_TRUE(books_[1].app.Workbooks()->find("Far.xlsx"));
  const auto one_more = make_ref<DrillDown>();
  EXPECT_EQ(declining->BooksNotOpened()->Count(), 0);
  EXPECT_EQ(opening->BooksOpened()->Count(), 0);
}

TEST_F(TwoApplicationsAndABook, ItIsClosedInTheApplicationThatOpenedIt) {
  const auto opening = asking(books_[0], true);
  opening->FindInputs();
  const auto kept = opening->BooksOpened()->Item(1);
  const auto other = asking(books_[1], true);
  other->FindInputs();
  kept->CloseBook();
  EXPECT_FALSE(books_[0].app.Workbooks()->find("Far.xlsx"));
  EXPECT_TRUE(books_[1].app.Workbooks()->find("Far.xlsx"));
}

}  // namespace
}  // namespace qto::test
