#include <gmock/gmock.h>

#include "tests/cli/run_command.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using testing::HasSubstr;

TEST(BadBook, is_named_with_the_part_and_the_reason) {
  BookFile good;
  good.cells("<row r=\"1\"><c r=\"A1\"><f>B1</f><v>1</v></c></row>");
  const std::string bytes = good.bytes();
  BookFile no_sheet = good;
  no_sheet.remove("xl/sheet1.xml");
  BookFile no_workbook = good;
  no_workbook.remove("xl/workbook.xml");
  BookFile unclosed = good;
  unclosed.edit("xl/sheet1.xml", "</c>", "\n</d>");
  struct Case {
    const char* name;
    std::string bytes;
    std::vector<std::string> err;
  };
  const std::vector<Case> cases = {
      {"empty.xlsx", "", {"empty.xlsx"}},
      {"text.xlsx", "Sales,Costs\n1,2\n", {"text.xlsx", "not a workbook"}},
      {"text.csv", "Sales,Costs\n1,2\n", {"text.csv", "--host libreoffice"}},
      {"truncated.xlsx", bytes.substr(0, bytes.size() / 2), {"truncated.xlsx"}},
      {"zip.xlsx", zip_bytes({{"readme.txt", "no workbook"}}), {"zip.xlsx"}},
      {"no_sheet.xlsx", no_sheet.bytes(), {"no_sheet.xlsx", "xl/sheet1.xml"}},
      {"no_workbook.xlsx", no_workbook.bytes(), {"no_workbook.xlsx", "holds no workbook part"}},
      {"unclosed.xlsx", unclosed.bytes(), {"unclosed.xlsx", "xl/sheet1.xml, line 3"}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    const TemporaryFile file(one.name, one.bytes);
    const Outcome outcome = run_qto({"tree", file.path(), "A1"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(outcome.out, "");
    for (const std::string& text : one.err) EXPECT_THAT(outcome.err, HasSubstr(text));
  }
  EXPECT_EQ(run_qto({"part", "/no/such/folder/book.xlsx", "A1"}).status, 4);
  EXPECT_EQ(run_qto({"part", testing::TempDir(), "A1"}).status, 4);
}

TEST(BadBook, that_is_something_else_is_told_as_what_it_is) {
  const TemporaryFile pointer(
      "lfs.xlsx", "version https://git-lfs.github.com/spec/v1\noid sha256:00\nsize 9\n");
  const TemporaryFile lock("~$plan.xlsx", "somebody");
  const struct {
    std::string path;
    const char* told;
  } rows[] = {{pointer.path(), "a pointer of Git LFS"},
              {lock.path(), "the lock file of one that is open"},
              {testing::TempDir(), "is a folder"}};
  for (const auto& row : rows) {
    const Outcome outcome = run_qto({"inputs", row.path, "A1"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.err, HasSubstr(row.told));
  }
}

TEST(CircularBook, is_cut_where_the_circle_closes_or_refused_with_a_cell_and_a_way_out) {
  BookFile book;
  book.cells(
      "<row r=\"1\"><c r=\"A1\"><f>B1+C1</f><v>1</v></c><c r=\"B1\"><f>A1+1</f><v>2</v></c>"
      "<c r=\"C1\"><v>7</v></c></row>");
  const TemporaryFile file("circle.xlsx", book.bytes());
  for (const char* operation : {"tree", "inputs", "errors"}) {
    SCOPED_TRACE(operation);
    const Outcome refused = run_qto({operation, file.path(), "A1", "--reading", "written"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, HasSubstr("circular reference"));
    EXPECT_THAT(refused.err, testing::ContainsRegex("Sheet1![AB]1 depends on itself"));
    EXPECT_THAT(refused.err, HasSubstr("limited depth"));
  }
  const Outcome number = run_qto({"inputs", file.path(), "A1", "--json", "--reading", "written"});
  EXPECT_THAT(number.out, HasSubstr("\"80040003\""));
  const Outcome shown = run_qto({"tree", file.path(), "A1"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(shown.out,
            "Sheet1!A1  =B1+C1 → 1\n"
            "├─ Sheet1!B1  =A1+1 → 2  {circle: Sheet1!A1 → Sheet1!B1 → Sheet1!A1}\n"
            "│  └─ Sheet1!A1  =B1+C1 → 1  (see above)\n"
            "└─ Sheet1!C1  7\n"
            "\n"
            "2 formulas, 1 other item, 2 levels\n"
            "\n"
            "Circles of references, cut where they close:\n"
            "  Sheet1!B1  circle: Sheet1!A1 → Sheet1!B1 → Sheet1!A1\n");
}

}  // namespace
}  // namespace qto::test
