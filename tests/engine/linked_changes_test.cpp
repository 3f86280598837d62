// What happens to a drill while handlers and the file system change the books under it.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/book_on_disk.hpp"
#include "tests/support/encrypting.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

/// A drill over Plan.xlsx, which refers to books of a folder; its questions are counted and
/// answered with yes.
class LinkedChanges : public testing::Test {
 protected:
  LinkedChanges() {
    folder_.put_book("Far.xlsx", "A1=1; A2==A1*2; A3=3; name Rate=Sheet1!$A$3");
    folder_.put_book("Other.xlsx", "A1=5");
  }
  std::string far(const std::string& cell) const {
    return "'" + folder_.path() + "/[Far.xlsx]Sheet1'!" + cell;
  }
  std::string file(const std::string& name) const { return folder_.path() + "/" + name; }

  Ref<DrillDown> drill(std::string_view start) {
    const auto drill = drill_from(books_, start);
    drill->AskToOpenBook.add([this](auto&, bool&) {
      ++asked_;
      if (on_ask_) on_ask_();
    });
    drill->AskForPassword.add([this](auto&, std::string& password) {
      ++passwords_asked_;
      password = password_;
    });
    drill->AfterOpenBookAttempt.add(
        [this](const std::string&, const std::string&, qtoReasonNotOpened) {
          if (after_open_) after_open_();
        });
    return drill;
  }
  /// Tree and codes of the records: "+" opened, "-" not.
  std::string drilled(const Ref<DrillDown>& drill) {
    drill->DrillHere();
    return tree(drill->StartModelPart()) + records(*drill);
  }
  static std::string records(DrillDown& drill) {
    std::string out;
    drill.BooksOpened()->for_each([&](const LinkedBook& book) { out += " +" + book.Name(); });
    drill.BooksNotOpened()->for_each([&](const LinkedBook& book) {
      out += " -" + book.Name() + ":" + std::to_string(book.WhyNotOpened());
    });
    return out;
  }
  void close(std::string_view name) {
    if (const auto book = books_.app.Workbooks()->find(name)) book->Close(false);
  }

  BookFolder folder_;
  Books books_;
  int asked_ = 0;
  int passwords_asked_ = 0;
  std::string password_;
  std::function<void()> on_ask_;
  std::function<void()> after_open_;
};

TEST_F(LinkedChanges, TenThousandReferencesAreOneQuestion) {
  constexpr int count = 10'000;
  std::string text = "B1==SUM(A1:A10000)";
  for (int row = 1; row <= count; ++row)
    text += "; A" + std::to_string(row) + "==" + far("B" + std::to_string(row));
  books_.add(text);
  for (const bool open : {false, true}) {
    asked_ = 0;
    const auto here = drill("B1");
    here->AskToOpenBook.add([open](auto&, bool& choice) { choice = open; });
    here->FindInputs();
    EXPECT_EQ(asked_, 1);
    EXPECT_EQ(here->InputCells()->Count(), count);
    EXPECT_EQ(here->InputCells()->Item(1)->IsUnknown(), !open);
    EXPECT_EQ(here->BooksOpened()->Count(), open ? 1 : 0);
    EXPECT_EQ(here->BooksNotOpened()->Count(), open ? 0 : 1);
  }
}

TEST_F(LinkedChanges, AFileThatVanishesAfterTheQuestionIsNotFound) {
  books_.add("A9=7; B1==A9+" + far("A2"));
  on_ask_ = [&] { std::filesystem::remove(file("Far.xlsx")); };
  EXPECT_EQ(drilled(drill("B1")), "B1(A9 ?[Far.xlsx]A2) -Far.xlsx:3");
}

TEST_F(LinkedChanges, AFileThatIsCutOffOrReplacedIsNotOpened) {
  books_.add("A9=7; B1==A9+" + far("A2"));
  const auto cut = [&] { std::filesystem::resize_file(file("Far.xlsx"), 300); };
  const auto emptied = [&] { folder_.put("Far.xlsx", ""); };
  const auto replaced = [&] { folder_.put("Far.xlsx", "<html>moved</html>"); };
  const auto folder = [&] {
    std::filesystem::remove(file("Far.xlsx"));
    std::filesystem::create_directory(file("Far.xlsx"));
  };
  for (const std::function<void()>& change :
       std::initializer_list<std::function<void()>>{cut, emptied, replaced, folder}) {
    on_ask_ = change;
    passwords_asked_ = 0;
    EXPECT_EQ(drilled(drill("B1")), "B1(A9 ?[Far.xlsx]A2) -Far.xlsx:5");
    EXPECT_EQ(passwords_asked_, 1);
  }
}

TEST_F(LinkedChanges, AFileThatGrowsIsReadOrRefused) {
  books_.add("A9=7; B1==A9+" + far("A2"));
  on_ask_ = [&] {
    std::ofstream(file("Far.xlsx"), std::ios::app | std::ios::binary) << std::string(50'000, 'x');
  };
  const std::string outcome = drilled(drill("B1"));
  EXPECT_TRUE(outcome == "B1(A9 [Far.xlsx]A2([Far.xlsx]A1)) +Far.xlsx" ||
              outcome == "B1(A9 ?[Far.xlsx]A2) -Far.xlsx:5")
      << outcome;
}

TEST_F(LinkedChanges, ABookClosedByTheClientIsOpenedAgainWithoutAQuestion) {
  books_.add("B1==" + far("A1") + "; B2==B1+" + far("A3"));
  const auto here = drill("B2");
  after_open_ = [&] {
    if (asked_ == 1) close("Far.xlsx");
  };
  // The first reference finds the book gone again, the second opens it silently.
  here->BeforeGetPrecedents.add([&](Ref<ModelPart>& part, bool&) {
    if (part->AddressShort() == "B1") close("Far.xlsx");
  });
  const std::string outcome = drilled(here);
  EXPECT_EQ(asked_, 1) << outcome;
  EXPECT_EQ(records(*here), " +Far.xlsx");
  EXPECT_TRUE(books_.app.Workbooks()->find("Far.xlsx"));
  EXPECT_NE(outcome.find("[Far.xlsx]A1"), std::string::npos) << outcome;
}

TEST_F(LinkedChanges, ABookThatCannotBeOpenedAgainMovesToTheOthers) {
  books_.add("B1==" + far("A1") + "; B2==" + far("A3"));
  const auto first = drill("B1");
  EXPECT_EQ(drilled(first), "B1([Far.xlsx]A1) +Far.xlsx");
  close("Far.xlsx");
  std::filesystem::remove(file("Far.xlsx"));
  first->putref_StartUnderlyingObject(books_.range("B2"));
  EXPECT_EQ(drilled(first), "B2(?[Far.xlsx]A3) -Far.xlsx:5");
  EXPECT_EQ(asked_, 1);
}

TEST_F(LinkedChanges, ReopeningUsesThePasswordOfTheFirstTime) {
  const std::string content = [&] {
    std::ifstream in(file("Far.xlsx"), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }();
  folder_.put("Far.xlsx", agile_encrypted(content, "secret").file());
  books_.add("B1==" + far("A1") + "; B2==" + far("A3"));
  password_ = "secret";
  const auto here = drill("B1");
  EXPECT_EQ(drilled(here), "B1([Far.xlsx]A1) +Far.xlsx");
  EXPECT_EQ(here->BooksOpened()->Item(1)->Password(), "secret");
  here->BooksOpened()->CloseBooks();
  EXPECT_FALSE(books_.app.Workbooks()->find("Far.xlsx"));
  here->putref_StartUnderlyingObject(books_.range("B2"));
  EXPECT_EQ(drilled(here), "B2([Far.xlsx]A3) +Far.xlsx");
  EXPECT_EQ(passwords_asked_, 1);
  password_ = "wrong";
  close("Far.xlsx");
  EXPECT_EQ(drilled(drill("B1")), "B1(?[Far.xlsx]A1) -Far.xlsx:5");
  password_ = "";
  EXPECT_EQ(drilled(drill("B1")), "B1(?[Far.xlsx]A1) -Far.xlsx:5");
}

TEST_F(LinkedChanges, HandlersMayOpenAndCloseOtherBooks) {
  books_.add("A9=7; B1==A9+" + far("A2"));
  on_ask_ = [&] { books_.app.Workbooks()->Open(file("Other.xlsx")); };
  after_open_ = [&] { close("Other.xlsx"); };
  EXPECT_EQ(drilled(drill("B1")), "B1(A9 [Far.xlsx]A2([Far.xlsx]A1)) +Far.xlsx");
  EXPECT_FALSE(books_.app.Workbooks()->find("Other.xlsx"));
}

TEST_F(LinkedChanges, AHandlerMayOpenTheVeryBook) {
  books_.add("A9=7; B1==A9+" + far("A2"));
  on_ask_ = [&] { books_.app.Workbooks()->Open(file("Far.xlsx")); };
  const auto here = drill("B1");
  here->DuplicateBookName.add([](Ref<host::Workbook>&, const std::string&, const std::string&,
                                 bool& go_on) { go_on = true; });
  EXPECT_EQ(drilled(here), "B1(A9 [Far.xlsx]A2([Far.xlsx]A1))");
}

TEST_F(LinkedChanges, ClosingALinkedBookUnderTheWalkEndsInOrder) {
  books_.add("A9=7; B1==" + far("A2") + "+A9");
  const auto here = drill("B1");
  here->BeforeGetPrecedents.add([&](Ref<ModelPart>& part, bool&) {
    if (part->WorkBookName() == "Far.xlsx") close("Far.xlsx");
  });
  const Reports reports;
  here->FindInputs();
  EXPECT_EQ(records(*here), " +Far.xlsx");
  // What could not be followed is reported or taken as an input, never lost.
  EXPECT_NE(listed(here->InputCells()).find("A9"), std::string::npos);
}

TEST_F(LinkedChanges, PartsOfABookThatWasClosedKeepTheirKeysAndNames) {
  books_.add("B1==" + far("A1") + "+" + far("A2") + "+" + far("Rate"));
  const auto told = [&](bool before) {
    const auto here = drill("B1");
    here->FindInputs();
    std::string out;
    const auto tell = [&] {
      for (ModelPart& part : *here->InputCells())
        out += part.UniqueKey() + " " + part.WorkBookName() + " " + part.WorkBookPath() + " " +
               part.WorkSheetName() + " " + part.AddressShort() + "|";
    };
    if (before) tell();
    here->BooksOpened()->CloseBooks();
    if (!before) tell();
    for (ModelPart& part : *here->InputCells()) {
      EXPECT_EQ(here->InputCells()->Item(part.UniqueKey()).get(), &part);
      part.CheckForChanges();  // and notices that its book is gone
    }
    if (!before) return out;
    const std::string held = std::exchange(out, "");
    tell();
    EXPECT_EQ(out, held);
    return held;
  };
  const Reports reports;
  const std::string open = told(true);
  EXPECT_NE(open.find("[Far.xlsx]Sheet1'!A1 Far.xlsx"), std::string::npos) << open;
  EXPECT_EQ(told(false), open);
  EXPECT_EQ(reports.text(), "");
}

}  // namespace
}  // namespace qto::test
