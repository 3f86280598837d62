// Where linked workbooks are found.

#include <filesystem>

#include "tests/objects/book_file.hpp"
#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

constexpr const char* one_cell = "<row r='1'><c r='A1'><v>7</v></c></row>";
constexpr const char* linked_cell = "<row r='1'><c r='A1'><f>[1]Sheet1!A1*2</f><v>22</v></c></row>";

std::string formula_of(const Ref<host::Workbook>& book) {
  return book->Worksheets(1)->Range("A1")->Formula();
}

TEST(LinkPlaces, StoredElsewhereButFoundBesideTheBook) {
  const TemporaryFolder folder;
  write_book(folder / "Source.xlsx", one_cell);
  for (const char* target :
       {"file:///D:\\Data\\Source.xlsx", "sub/Source.xlsx", "\\\\server\\share\\Source.xlsx",
        "/no/such/Source.xlsx", "file:///D:\\Data\\SOURCE.XLSX"}) {
    write_book(folder / "Main.xlsx", linked_cell, target);
    Application app;
    const auto main = app.Workbooks()->Open(folder / "Main.xlsx");
    EXPECT_EQ(formula_of(main), "='" + folder.path() + "/[Source.xlsx]Sheet1'!A1*2") << target;
    EXPECT_NE(main->LinkSources(1).at(0), folder / "Source.xlsx") << target;
    // The stored name still opens it.
    EXPECT_EQ(app.Workbooks()->Open(main->LinkSources(1).at(0))->FullName(),
              folder / "Source.xlsx");
    EXPECT_EQ(formula_of(main), "=[Source.xlsx]Sheet1!A1*2");
  }
}

TEST(LinkPlaces, AtItsStoredPlaceBeforeBesideTheBook) {
  const TemporaryFolder folder;
  write_book(folder / "sub/Source.xlsx", one_cell);
  write_book(folder / "Source.xlsx", one_cell);
  write_book(folder / "Main.xlsx", linked_cell, "sub/Source.xlsx");
  Application app;
  const auto main = app.Workbooks()->Open(folder / "Main.xlsx");
  EXPECT_EQ(formula_of(main), "='" + folder.path() + "/sub/[Source.xlsx]Sheet1'!A1*2");
}

TEST(LinkPlaces, FoundInAFolderThatTheClientNamesLater) {
  const TemporaryFolder folder;
  write_book(folder / "far/Source.xlsx", one_cell);
  write_book(folder / "Main.xlsx", linked_cell, "file:///D:\\Data\\Source.xlsx");
  Application app;
  const auto main = app.Workbooks()->Open(folder / "Main.xlsx");
  EXPECT_EQ(formula_of(main), "='D:\\Data\\[Source.xlsx]Sheet1'!A1*2");
  EXPECT_FALSE(app.find_file("D:\\Data\\Source.xlsx"));
  app.add_search_folder(folder / "nowhere");
  app.add_search_folder(folder / "far");
  EXPECT_EQ(formula_of(main), "='" + folder.path() + "/far/[Source.xlsx]Sheet1'!A1*2");
  EXPECT_EQ(main->LinkSources(1).at(0), "D:\\Data\\Source.xlsx");
  EXPECT_EQ(app.find_file("D:\\Data\\Source.xlsx"), folder / "far/Source.xlsx");
  // A formula typed with the stored path is the same link.
  main->Worksheets(1)->Range("B1")->put_Formula("='D:\\Data\\[Source.xlsx]Sheet1'!A1");
  EXPECT_EQ(main->LinkSources(1).size(), 1u);
}

TEST(LinkPlaces, OnTheInternetAreLeftAlone) {
  const TemporaryFolder folder;
  write_book(folder / "Source.xlsx", one_cell);
  write_book(folder / "Main.xlsx", linked_cell, "https://host.example/x/Source.xlsx");
  Application app;
  const auto main = app.Workbooks()->Open(folder / "Main.xlsx");
  EXPECT_EQ(main->LinkSources(1).at(0), "https://host.example/x/Source.xlsx");
  EXPECT_EQ(formula_of(main), "='https://host.example/x/[Source.xlsx]Sheet1'!A1*2");
  EXPECT_FALSE(app.find_file("https://host.example/x/Source.xlsx"));
}

TEST(OpenFailed, TellsTheReasonBeforeTheCallFails) {
  const TemporaryFolder folder;
  Application app;
  std::string told;
  app.open_failed().add([&](const host::OpenError& error) { told = error.what(); });
  EXPECT_FAILS(app.Workbooks()->Open(folder / "none.xlsx"));
  EXPECT_EQ(told, folder / "none.xlsx" + ": no such file");
  EXPECT_FAILS(app.Workbooks()->Open(folder.path()));
}

}  // namespace
}  // namespace qto::embedded
