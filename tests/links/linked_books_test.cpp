#include "qto/links/linked_books.hpp"

#include <gtest/gtest.h>

#include "qto/automation/error.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/links/link_list.hpp"
#include "qto/links/main.hpp"

namespace qto {
namespace {

Ref<LinkedBook> linked(std::string_view path, std::string_view name,
                       qtoReasonNotOpened reason = qtoWNOOK) {
  auto book = make_ref<LinkedBook>();
  book->put_Path(path);
  book->put_Name(name);
  book->put_WhyNotOpened(reason);
  return book;
}

std::int32_t failure_of(const std::function<void()>& call) {
  try {
    call();
  } catch (const AutomationError& error) {
    return error.number;
  } catch (const NumberedFailure& failure) {
    return failure.number;
  }
  return 0;
}

TEST(LinkedBook, JoinsPathAndName) {
  const struct {
    const char* path;
    bool local;
    const char* full_name;
  } rows[] = {{"D:\\Data", true, "D:\\Data\\B.xls"},
              {"D:\\Data\\", true, "D:\\Data\\B.xls"},
              {"/home/x/", true, "/home/x\\B.xls"},
              {"http://host/x", false, "http://host/x/B.xls"},
              {"http://host/x/", false, "http://host/x/B.xls"}};
  for (const auto& row : rows) {
    const auto book = linked(row.path, "B.xls");
    EXPECT_EQ(book->IsLocalFile(), row.local) << row.path;
    EXPECT_EQ(book->FullNameWithPath(), row.full_name);
  }
}

TEST(LinkedBook, BeginsAsOpenedAndRefusesReasonsThatAreNone) {
  const auto book = make_ref<LinkedBook>();
  EXPECT_TRUE(book->Opened());
  book->put_WhyNotOpened(qtownoDuplicateName);
  EXPECT_FALSE(book->Opened());
  for (const int reason : {-1, 6})
    EXPECT_EQ(failure_of([&] { book->put_WhyNotOpened(static_cast<qtoReasonNotOpened>(reason)); }),
              -2147221500);
  EXPECT_EQ(book->WhyNotOpened(), qtownoDuplicateName);
}

TEST(LinkedBook, OpensAgainOnlyWhatWasOpenedAndNeverRaises) {
  const embedded::Application app;
  EXPECT_FALSE(linked("/nowhere", "B.xlsx", qtownoNotFound)->OpenIt(app));
  EXPECT_FALSE(linked("/nowhere", "B.xlsx")->OpenIt(app));
  EXPECT_FALSE(linked("/nowhere", "B.xlsx")->OpenIt(nullptr));
}

TEST(LinkedBooks, KeysIgnoreCaseAndFailuresReachTheCaller) {
  LinkedBooks books;
  const auto first = linked("D:\\Data", "A.xls");
  books.AddExisting(first);
  books.AddExisting(linked("D:\\Data", "B.xls"));
  EXPECT_EQ(failure_of([&] { books.AddExisting(linked("d:\\data\\", "a.XLS")); }), 457);
  EXPECT_EQ(books.Count(), 2);
  EXPECT_EQ(books.Item("d:\\DATA\\a.xls"), first);
  EXPECT_EQ(books.Item(1), first);
  EXPECT_EQ(books.Item(2.0)->Name(), "B.xls");
  for (const Variant& missing : {Variant(0), Variant(3), Variant("A.xls"), Variant()}) {
    EXPECT_EQ(failure_of([&] { books.Item(missing); }), 9);
    EXPECT_EQ(failure_of([&] { books.Remove(missing); }), 9);
  }
  first->put_Name("Renamed.xls");  // the key is the one of the time of adding
  EXPECT_EQ(books.Item("D:\\Data\\A.xls"), first);
  books.Remove(1);
  EXPECT_EQ(books.Item(1)->Name(), "B.xls");
}

TEST(LinkedBooks, ClosesWhatTheEngineOpened) {
  const embedded::Application app;
  Main::set_shared_application(app);
  const auto opened = app.Workbooks()->Add();
  const auto other = app.Workbooks()->Add();
  LinkedBooks books;
  books.AddExisting(linked("", opened->Name()));
  books.AddExisting(linked("", other->Name(), qtownoDuplicateName));
  books.AddExisting(linked("", "not open.xlsx"));
  books.CloseBooks();
  EXPECT_FALSE(opened->exists());
  EXPECT_TRUE(other->exists());
  EXPECT_EQ(books.Count(), 3);
  Main::set_shared_application(nullptr);
}

TEST(LinkList, OfABookWithoutLinksIsEmpty) {
  const embedded::Application app;
  LinkList links;
  EXPECT_EQ(links.CountLinks(), 0);
  const auto book = app.Workbooks()->Add();
  links.putref_Workbook(book);
  EXPECT_EQ(links.Workbook(), book);
  EXPECT_EQ(links.CountLinks(), 0);
  EXPECT_EQ(links.Links(1), "");  // reported, not raised
}

}  // namespace
}  // namespace qto
