#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/book_on_disk.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

/// A drill over a book whose formulas refer to books of a folder; every event of the opening is
/// logged.
class LinkedWorkbooks : public testing::Test {
 protected:
  /// "@" in the text stands for 'folder/
  void open(std::string text) {
    for (std::size_t at; (at = text.find('@')) != std::string::npos;)
      text.replace(at, 1, "'" + folder_.path() + "/");
    books_.add(text);
  }
  Ref<DrillDown> drill(std::string_view start) {
    const auto drill = drill_from(books_, start);
    drill->AskToOpenBook.add([this](auto& part, bool& choice) {
      EXPECT_TRUE(choice);
      log_ += " ask " + part->WorkBookName();
      choice = user_choice_;
      if (on_ask_) on_ask_();
    });
    drill->AskForPassword.add([this](auto& part, std::string& password) {
      EXPECT_EQ(password, "");
      log_ += " password " + part->WorkBookName();
      password = password_;
    });
    drill->BeforeInternetAccess.add(
        [this](const std::string& url, const std::string& name, bool& cancel) {
          log_ += " internet " + url + " " + name;
          cancel = cancel_internet_;
        });
    drill->DuplicateBookName.add([this](Ref<host::Workbook>& open, const std::string&,
                                        const std::string& name, bool& go_on) {
      EXPECT_FALSE(go_on);
      log_ += " duplicate " + open->Name() + " " + name;
      go_on = proceed_;
    });
    drill->AfterOpenBookAttempt.add(
        [this](const std::string&, const std::string& name, qtoReasonNotOpened reason) {
          log_ += " after " + name + " " + std::to_string(reason);
        });
    return drill;
  }
  /// The events of a DrillHere, and the tree.
  std::string drilled(const Ref<DrillDown>& drill) {
    log_.clear();
    drill->DrillHere();
    return log_ + " | " + tree(drill->StartModelPart());
  }
  static std::string not_opened(const Ref<DrillDown>& drill) {
    std::string out;
    drill->BooksNotOpened()->for_each([&](const LinkedBook& book) {
      out += book.Name() + " " + std::to_string(book.WhyNotOpened()) + " ";
    });
    return out;
  }

  BookFolder folder_;
  Books books_;
  std::string log_;
  std::string password_;
  std::function<void()> on_ask_;
  bool user_choice_ = true;
  bool cancel_internet_ = true;
  bool proceed_ = false;
};

TEST_F(LinkedWorkbooks, AreOpenedReadAndRecorded) {
  folder_.put_book("Far.xlsx", "A1=1; A2==A1*2; A3=3");
  open("B1==SUM(@[Far.xlsx]Sheet1'!A2:A3); B2==@[Far.xlsx]Sheet1'!A1+B1");
  const auto here = drill("B2");
  EXPECT_EQ(drilled(here),
            " ask Far.xlsx after Far.xlsx 0 | "
            // What was found in a book opened meanwhile goes to the end.
            "B2(B1([Far.xlsx]A2([Far.xlsx]A1) [Far.xlsx]A3) [Far.xlsx]A1)");
  ASSERT_EQ(here->BooksOpened()->Count(), 1);
  const auto linked = here->BooksOpened()->Item(1);
  EXPECT_EQ(linked->Name(), "Far.xlsx");
  EXPECT_EQ(linked->Password(), "");
  EXPECT_EQ(not_opened(here), "");
  EXPECT_EQ(books_.app->ActiveWorkbook(), books_.opened[0]);
  EXPECT_TRUE(books_.app.Workbooks()->find("Far.xlsx"));
}

TEST_F(LinkedWorkbooks, ClosedSinceAreOpenedAgainWithoutAnEvent) {
  folder_.put_book("Far.xlsx", "A1=1");
  open("B1==@[Far.xlsx]Sheet1'!A1");
  const auto here = drill("B1");
  drilled(here);
  here->BooksOpened()->CloseBooks();
  EXPECT_FALSE(books_.app.Workbooks()->find("Far.xlsx"));
  EXPECT_EQ(drilled(here), " | B1([Far.xlsx]A1)");
  here->BooksOpened()->CloseBooks();
  std::filesystem::remove(folder_.path() + "/Far.xlsx");
  EXPECT_EQ(drilled(here), " | B1(?[Far.xlsx]A1)");
  EXPECT_EQ(here->BooksOpened()->Count(), 0);
  EXPECT_EQ(not_opened(here), "Far.xlsx 5 ");
  EXPECT_EQ(drilled(here), " | B1(?[Far.xlsx]A1)");  // not offered again
}

TEST_F(LinkedWorkbooks, DeclinedStayUnknownAndAreAskedForOnce) {
  folder_.put_book("Far.xlsx", "A1=1; A2=2");
  open("B1==@[Far.xlsx]Sheet1'!A1; B2==B1+@[Far.xlsx]Sheet1'!A2");
  user_choice_ = false;
  const auto here = drill("B2");
  EXPECT_EQ(drilled(here), " ask Far.xlsx | B2(B1(?[Far.xlsx]A1) ?[Far.xlsx]A2)");
  EXPECT_EQ(not_opened(here), "Far.xlsx 1 ");
  EXPECT_EQ(drilled(here), " | B2(B1(?[Far.xlsx]A1) ?[Far.xlsx]A2)");
}

TEST_F(LinkedWorkbooks, MissingFilesAreNotTried) {
  open("B1==@[Far.xlsx]Sheet1'!A1");
  const auto here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Far.xlsx | B1(?[Far.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "Far.xlsx 3 ");
}

TEST_F(LinkedWorkbooks, ThatDoNotOpenAskForAPasswordOnce) {
  folder_.put("Far.xlsx", "no workbook");
  folder_.put("Near.xlsx", "no workbook");
  open("B1==@[Far.xlsx]Sheet1'!A1; B2==@[Near.xlsx]Sheet1'!A1");
  auto here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Far.xlsx password Far.xlsx | B1(?[Far.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "Far.xlsx 5 ");
  password_ = "wrong";
  here = drill("B2");
  EXPECT_EQ(drilled(here),
            " ask Near.xlsx password Near.xlsx after Near.xlsx 5 | B2(?[Near.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "Near.xlsx 5 ");
}

TEST_F(LinkedWorkbooks, WithACircularReferenceAreClosedWhereThatMatters) {
  folder_.put_book("Round.xlsx", "A1==A2; A2==A1; A3=1");
  open("B1==@[Round.xlsx]Sheet1'!A3");
  auto here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Round.xlsx after Round.xlsx 2 | B1(?[Round.xlsx]A3)");
  EXPECT_EQ(not_opened(here), "Round.xlsx 2 ");
  EXPECT_FALSE(books_.app.Workbooks()->find("Round.xlsx"));
  here = drill("B1");
  here->put_MaximumDepth(3);
  EXPECT_EQ(drilled(here), " ask Round.xlsx after Round.xlsx 0 | B1([Round.xlsx]A3)");
}

TEST_F(LinkedWorkbooks, OnTheInternetAreAskedForAndRefusedByThisHost) {
  open("B1=='http://nobody.example/x/[Far.xlsx]Sheet1'!A1");
  auto here = drill("B1");
  EXPECT_EQ(drilled(here),
            " ask Far.xlsx internet http://nobody.example/x/ Far.xlsx | "
            "B1(?[Far.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "Far.xlsx 1 ");
  cancel_internet_ = false;
  here = drill("B1");
  EXPECT_EQ(drilled(here),
            " ask Far.xlsx internet http://nobody.example/x/ Far.xlsx password "
            "Far.xlsx | B1(?[Far.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "Far.xlsx 5 ");
}

TEST_F(LinkedWorkbooks, OfANameOpenedMeanwhileAreTheOpenOne) {
  folder_.put_book("Far.xlsx", "A1=1");
  open("B1==@[Far.xlsx]Sheet1'!A1");
  on_ask_ = [this] { books_.add("A1=9", "Far.xlsx", "/elsewhere"); };
  auto here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Far.xlsx duplicate Far.xlsx Far.xlsx | B1([Far.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "Far.xlsx 4 ");
  EXPECT_EQ(here->StartModelPart()->DirectPrecedents()->Item(1)->WorkBookPath(), "/elsewhere");
  books_.opened.back()->Close(false);
  proceed_ = true;
  here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Far.xlsx duplicate Far.xlsx Far.xlsx | B1([Far.xlsx]A1)");
  EXPECT_EQ(not_opened(here), "");
}

TEST_F(LinkedWorkbooks, NamesInThemBecomeKnownInPlace) {
  folder_.put_book("Far.xlsx", "A1=1; name Rate=Sheet1!$A$1");
  open("A9=1; B1==@Far.xlsx'!Rate+A9; B2==@Far.xlsx'!Missing+A9");
  auto here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Far.xlsx after Far.xlsx 0 | B1([Far.xlsx]Rate([Far.xlsx]A1) A9)");
  here->BooksOpened()->CloseBooks();
  here = drill("B2");
  EXPECT_EQ(drilled(here), " ask Far.xlsx after Far.xlsx 0 | B2(?[Far.xlsx]Missing A9)");
  const auto missing = here->StartModelPart()->DirectPrecedents()->Item(1);
  EXPECT_FALSE(missing->Exists());
  EXPECT_TRUE(missing->IsUnknown());
}

TEST_F(LinkedWorkbooks, SheetsThatAreNotThereLeaveThePartUnknown) {
  folder_.put_book("Far.xlsx", "A1=1");
  open("B1==@[Far.xlsx]Gone'!A1");
  const auto here = drill("B1");
  EXPECT_EQ(drilled(here), " ask Far.xlsx after Far.xlsx 0 | B1(?[Far.xlsx]Gone!A1)");
  EXPECT_FALSE(here->StartModelPart()->DirectPrecedents()->Item(1)->Exists());
}

TEST_F(LinkedWorkbooks, FeedFindInputsAcrossBooks) {
  folder_.put_book("Far.xlsx", "A1=1; A2==A1+A3; A3=2");
  open("A1=5; B1==A1+@[Far.xlsx]Sheet1'!A2");
  const auto here = drill("B1");
  here->FindInputs();
  EXPECT_EQ(listed(here->InputCells()), "A1 [Far.xlsx]A1 [Far.xlsx]A3");
}

TEST_F(LinkedWorkbooks, FailuresOfAHandlerEndTheParseOfThatFormula) {
  folder_.put_book("Far.xlsx", "A1=1");
  open("A9=1; B1==@[Far.xlsx]Sheet1'!A1; B2==B1+A9");
  on_ask_ = [] { throw NumberedFailure(77, "the client failed"); };
  const auto here = drill("B2");
  const Reports reports;
  EXPECT_EQ(drilled(here), " ask Far.xlsx | B2(B1 A9)");
  EXPECT_EQ(reports.text(), " !77");
}

}  // namespace
}  // namespace qto::test
