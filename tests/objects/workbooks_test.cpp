#include <filesystem>
#include <fstream>

#include "tests/objects/book_file.hpp"
#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

constexpr const char* one_cell = "<row r='1'><c r='A1'><v>7</v></c></row>";
constexpr const char* linked_cell = "<row r='1'><c r='A1'><f>[1]Sheet1!A1*2</f><v>22</v></c></row>";

host::OpenFailureKind kind_of_failure(const Application& app, const std::string& file) {
  try {
    app.Workbooks()->Open(file);
  } catch (const host::OpenError& error) {
    EXPECT_NE(std::string(error.what()), "");
    return error.kind;
  }
  ADD_FAILURE() << file << " was opened";
  return {};
}

TEST(Workbooks, OpenedByPath) {
  const TemporaryFolder folder;
  write_book(folder / "Plan.xlsx", one_cell);
  Application app;
  const auto book = app.Workbooks()->Open(folder / "Plan.xlsx");
  EXPECT_EQ(book->Name(), "Plan.xlsx");
  EXPECT_EQ(book->Path(), folder.path());
  EXPECT_EQ(book->FullName(), folder / "Plan.xlsx");
  EXPECT_EQ(shown(book->Worksheets(1)->Range("A1")->value()), "7");
  EXPECT_EQ(app->ActiveWorkbook(), book);
  EXPECT_EQ(app.Workbooks()->find("PLAN.XLSX"), book);
  EXPECT_EQ(app.Workbooks()->find(1), book);
  EXPECT_FALSE(app.Workbooks()->find(2));
  EXPECT_FALSE(app.Workbooks()->find(folder / "Plan.xlsx"));
  EXPECT_FAILS(app.Workbooks()->Item("Other.xlsx"));
}

TEST(Workbooks, OneBookOfANameAtATime) {
  const TemporaryFolder folder;
  write_book(folder / "Plan.xlsx", one_cell);
  write_book(folder / "other/Plan.xlsx", one_cell);
  Application app;
  const auto book = app.Workbooks()->Open(folder / "Plan.xlsx");
  app.Workbooks()->Add();
  EXPECT_EQ(app.Workbooks()->Open(folder / "other/../Plan.xlsx"), book);
  EXPECT_EQ(app->ActiveWorkbook(), book);
  EXPECT_EQ(app.Workbooks()->Count(), 2);
  EXPECT_FAILS(app.Workbooks()->Open(folder / "other/Plan.xlsx"));
  book->Close(false);
  EXPECT_EQ(app.Workbooks()->Open(folder / "other/Plan.xlsx")->Path(), folder / "other");
}

TEST(Workbooks, ForeignPathsAndSearchFolders) {
  const TemporaryFolder folder;
  write_book(folder / "Main.xlsx", one_cell);
  write_book(folder / "sub/Part.xlsx", one_cell);
  write_book(folder / "far/Far.xlsx", one_cell);
  Application app;
  const auto books = app.Workbooks();
  books->Open(folder / "Main.xlsx");
  EXPECT_EQ(books->Open(folder.path() + "\\sub\\Part.xlsx")->Path(), folder / "sub");
  EXPECT_EQ(books->Open("D:\\Elsewhere\\Part.xlsx")->Path(),
            folder / "sub");  // active book's folder
  EXPECT_EQ(kind_of_failure(app, "D:\\Elsewhere\\Far.xlsx"), host::OpenFailureKind::not_found);
  app.add_search_folder(folder / "far");
  EXPECT_EQ(books->Open("D:\\Elsewhere\\Far.xlsx")->Path(), folder / "far");
  books->Item("Far.xlsx")->Close(false);
  EXPECT_EQ(books->Open("Far.xlsx")->Path(), folder / "far");
}

TEST(Workbooks, PathsStayWhenTheCurrentFolderChanges) {
  const TemporaryFolder folder;
  write_book(folder / "Plan.xlsx", one_cell);
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  Application app;
  const auto book = app.Workbooks()->Open("Plan.xlsx");
  std::filesystem::current_path(before);
  EXPECT_EQ(book->Path(), folder.path());
  EXPECT_EQ(app.Workbooks()->Open(folder / "Plan.xlsx"), book);
}

TEST(Workbooks, FailuresSayWhatIsWrong) {
  const TemporaryFolder folder;
  std::ofstream(folder / "text.xlsx") << "just text";
  Application app;
  EXPECT_EQ(kind_of_failure(app, folder / "text.xlsx"), host::OpenFailureKind::not_a_package);
  EXPECT_EQ(kind_of_failure(app, folder / "none.xlsx"), host::OpenFailureKind::not_found);
  EXPECT_EQ(kind_of_failure(app, folder.path()), host::OpenFailureKind::not_found);
  EXPECT_EQ(kind_of_failure(app, ""), host::OpenFailureKind::not_found);
  for (const char* address : {"http://a.example/b.xlsx", "HTTPS://a.example/b.xlsx", "ftp://a/b"})
    EXPECT_FAILS(app.Workbooks()->Open(address));
  EXPECT_EQ(app.Workbooks()->Count(), 0);
}

TEST(Workbooks, NewOnesAreNumbered) {
  Application app;
  EXPECT_EQ(app.Workbooks()->Add()->Name(), "Book1");
  const auto second = app.Workbooks()->Add();
  EXPECT_EQ(second->Name(), "Book2");
  EXPECT_EQ(second->Path(), "");
  EXPECT_EQ(second->FullName(), "Book2");
  EXPECT_EQ(second->Worksheets(1)->Name(), "Sheet1");
  auto book = std::make_unique<Book>();
  book->name = "BOOK2";
  EXPECT_FAILS(app.adopt(std::move(book)));
}

TEST(Links, AreNamedAndFollowed) {
  const TemporaryFolder folder;
  write_book(folder / "Main.xlsx", linked_cell, "Source.xlsx");
  write_book(folder / "Source.xlsx", one_cell);
  Application app;
  const auto main = app.Workbooks()->Open(folder / "Main.xlsx");
  const auto cell = main->Worksheets(1)->Range("A1");
  EXPECT_EQ(main->LinkSources(host::link_type_workbooks),
            std::vector<std::string>{folder / "Source.xlsx"});
  EXPECT_EQ(cell->Formula(), "='" + folder.path() + "/[Source.xlsx]Sheet1'!A1*2");
  EXPECT_EQ(shown(cell->value()), "22");  // as the file remembers
  EXPECT_EQ(shown(main->Worksheets(1)->Evaluate("'" + folder.path() + "/[Source.xlsx]Sheet1'!A1")),
            "11");

  const auto source = app.Workbooks()->Open(main->LinkSources(1).at(0));
  EXPECT_EQ(cell->Formula(), "=[Source.xlsx]Sheet1!A1*2");
  EXPECT_EQ(shown(cell->value()), "14");
  source->Worksheets(1)->Range("A1")->put_value(8.0);
  EXPECT_EQ(shown(cell->value()), "16");
  source->Close(false);
  EXPECT_EQ(cell->Formula(), "='" + folder.path() + "/[Source.xlsx]Sheet1'!A1*2");
}

TEST(Links, OfAnotherMachineKeepTheirPath) {
  const TemporaryFolder folder;
  write_book(folder / "Main.xlsx", linked_cell, "file:///D:\\Data\\Source.xlsx");
  Application app;
  const auto main = app.Workbooks()->Open(folder / "Main.xlsx");
  EXPECT_EQ(main->LinkSources(1), std::vector<std::string>{"D:\\Data\\Source.xlsx"});
  EXPECT_EQ(main->Worksheets(1)->Range("A1")->Formula(), "='D:\\Data\\[Source.xlsx]Sheet1'!A1*2");
}

TEST(Workbook, SmallProperties) {
  Desk desk;
  EXPECT_FALSE(desk.book->AcceptLabelsInFormulas());
  desk.book->put_AcceptLabelsInFormulas(true);
  EXPECT_TRUE(desk.book->AcceptLabelsInFormulas());
  EXPECT_EQ(desk.app->Caption(), "Book1 - qto");
  EXPECT_EQ(desk.app->ReferenceStyle(), host::xlA1);
  desk.app->put_DisplayAlerts(false);
  EXPECT_FALSE(desk.app->DisplayAlerts());

  EXPECT_FAILS(desk.book->FollowHyperlink("mailto:a@b.example"));
  std::string followed;
  desk.app.hyperlink_followed().add([&](std::string_view address, bool& taken) {
    followed = address;
    taken = true;
  });
  desk.book->FollowHyperlink("mailto:a@b.example");
  EXPECT_EQ(followed, "mailto:a@b.example");
}

}  // namespace
}  // namespace qto::embedded
