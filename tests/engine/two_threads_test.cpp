#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/support/book_on_disk.hpp"
#include "tests/support/diagnostics_fixtures.hpp"
#include "tests/support/text_book.hpp"

/// Two apartments at work at once: each thread with an application and drills of its own.
namespace qto::test {
namespace {

/// Runs the same on two threads that wait for each other at the start.
void at_once(const std::function<void(int)>& work) {
  std::atomic<int> arrived = 0;
  const auto run = [&](int number) {
    for (++arrived; arrived < 2;) std::this_thread::yield();
    work(number);
  };
  std::thread other(run, 1);
  run(0);
  other.join();
}

TEST(TwoThreads, DrillInApplicationsOfTheirOwn) {
  BookFolder folder;
  folder.put_book("Far.xlsx", "A1=1; A2==A1*2");
  const std::string text =
      "A1=1; A2=2.5; A3=text; A4==1/0; name Rate=Sheet1!$A$2; name Relative=Sheet1!A2; "
      "B1==SUM(A1:A3)+Rate; B2==IF(A1>0,B1,A4)&TEXT(A2,\"#,##0.00\"); "
      "B3==VLOOKUP(2.5,A1:A3,1,FALSE)+INDIRECT(\"A\"&2)+SUM(C1:C5000)+Relative; "
      "B4==SUMPRODUCT(A1:A2,A1:A2)+SUMIF(A1:A3,\"t*\",A1:A3)+IFERROR(A4,0)+REGEXTEST(A3,\"t\"); "
      "B5==B2&B3&B4&'" +
      folder.path() + "/[Far.xlsx]Sheet1'!A2";
  const Options minimal{.ParseIf = 1, .ParseLookup = 1, .ParseSumif = 1, .ParseIndirect = 3};
  std::string answers[2];
  at_once([&](int number) {
    for (int round = 0; round < 5; ++round) {
      Books books(text);
      const Reports reports;
      for (const Options& options : {Options{}, minimal}) {
        const auto drill = drill_from(books, "B5", options);
        drill->AskToOpenBook.add([](auto&, bool& choice) { choice = true; });
        drill->FindInputs();
        answers[number] += listed(drill->InputCells()) + "|";
        drill->DrillHere();
        const auto& top = drill->StartModelPart();
        answers[number] += tree(top) + "|";
        top->SetResultsValues();
        answers[number] += top->Title() + top->Text() + top->UniqueKey() + "|";
        answers[number] += std::to_string(drill->BooksOpened()->Count());
        drill->BooksOpened()->CloseBooks();
      }
      answers[number] += errors(books, "B4") + reports.text();
    }
  });
  EXPECT_NE(answers[0].find("[Far.xlsx]A1"), std::string::npos) << answers[0];
  EXPECT_EQ(answers[0], answers[1]);
}

TEST(TwoThreads, ReportsAndTracesBelongToOne) {
  std::size_t reports[2] = {0, 0};
  std::int32_t open_calls[2] = {0, 0};
  at_once([&](int number) {
    if (number == 0) diagnostics::set_tracing(true);
    for (int round = 0; round < 20; ++round) {
      Books books("A1=1; C1==#REF!+A1; D1==C1+A1");
      const ScriptedDialog dialog(diagnostics::Outcome::leave);
      const auto drill = drill_from(books, number == 0 ? "D1" : "C1");
      if (number == 0) drill->DrillHere();
      reports[number] += dialog.reports.size();
      open_calls[number] += static_cast<std::int32_t>(diagnostics::call_stack().size());
    }
    diagnostics::set_tracing(false);
  });
  EXPECT_EQ(reports[0], 20u);
  EXPECT_EQ(reports[1], 0u);
  EXPECT_GT(open_calls[0], 0);
  EXPECT_EQ(open_calls[1], 0);
}

/// Two drills with a depth limit through a circle leave parts that hold each other.
TEST(TwoThreads, EachTakesDownItsCirclesOfParts) {
  at_once([](int) {
    Books books("A1==B1; B1==A1");
    for (int round = 0; round < 20; ++round) {
      const auto drill = drill_from(books, "A1");
      drill->put_MaximumDepth(3);
      drill->DrillHere();
      EXPECT_EQ(tree(drill->StartModelPart()), "A1(B1(A1(B1)))");
    }
  });
}

TEST(Threads, ThatEndLetGoOfTheirApplication) {
  const auto holders_after_a_thread = [](bool drills) {
    Ref<host::Application> application;
    std::thread([&] {
      Books books("A1=1; B1==A1");
      application = books.opened[0]->Application();
      if (drills) drill_from(books, "B1")->FindInputs();
    }).join();
    return application->ref_count();
  };
  EXPECT_EQ(holders_after_a_thread(true), holders_after_a_thread(false));
}

}  // namespace
}  // namespace qto::test
