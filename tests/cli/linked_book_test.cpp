#include <gmock/gmock.h>

#include "tests/cli/run_command.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using testing::HasSubstr;

/// A1 of the first book is computed from B2 of the other one, which lies beside it.
struct LinkedBooks {
  LinkedBooks()
      : first("first.xlsx", first_book().bytes()), prices("prices.xlsx", price_book().bytes()) {}

  static BookFile first_book() {
    BookFile book;
    book.workbook(
        "<sheets><sheet name=\"Sheet1\" sheetId=\"1\" r:id=\"r1\"/></sheets>"
        "<externalReferences><externalReference r:id=\"x1\"/></externalReferences>",
        {"worksheet"});
    book.cells("<row r=\"1\"><c r=\"A1\"><f>[1]Sheet1!B2*2</f><v>84</v></c></row>");
    book.part("xl/externalLinks/externalLink1.xml",
              root("externalLink",
                   "<externalBook r:id=\"rId1\"><sheetNames><sheetName val=\"Sheet1\"/>"
                   "</sheetNames></externalBook>"));
    book.links("xl/externalLinks/externalLink1.xml",
               {{"rId1", "externalLinkPath", "prices.xlsx", true}});
    return book;
  }
  static BookFile price_book() {
    BookFile book;
    book.cells("<row r=\"2\"><c r=\"B2\"><f>C2+2</f><v>42</v></c><c r=\"C2\"><v>40</v></c></row>");
    return book;
  }

  TemporaryFile first;
  TemporaryFile prices;
};

TEST(LinkedBook, is_opened_as_the_user_decides) {
  const LinkedBooks books;
  struct Case {
    std::vector<std::string> options;
    std::string typed;
    const char* out;
    const char* err;
  };
  const Case cases[] = {
      {{"--open", "always"}, "", "'[prices.xlsx]Sheet1'!C2  40", ""},
      {{"--open", "always"}, "", "Linked books opened:", ""},
      {{"--open", "never"}, "", "not to be opened; --open always opens it (reason 1)", ""},
      {{}, "", "(reason 1)", ""},
      {{"--open", "ask"}, "y\n", "'[prices.xlsx]Sheet1'!C2  40", "prices.xlsx. Open it?"},
      {{"--open", "ask"}, "n\n", "'[prices.xlsx]Sheet1'!B2  (not opened)", "Open it?"},
      {{"--open", "ask"}, "", "(reason 1)", "Open it?"},
  };
  for (const Case& one : cases) {
    std::vector<std::string> arguments{"inputs", books.first.path(), "A1"};
    arguments.insert(arguments.end(), one.options.begin(), one.options.end());
    SCOPED_TRACE(one.out);
    const Outcome outcome = run_qto(arguments, one.typed);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr(one.out));
    EXPECT_THAT(outcome.err, HasSubstr(one.err));
  }
}

TEST(LinkedBook, is_listed_with_its_place) {
  const LinkedBooks books;
  const Outcome found = run_qto({"links", books.first.path()});
  EXPECT_EQ(found.status, 0);
  EXPECT_THAT(found.out, HasSubstr("prices.xlsx\n    opened\n"));
  EXPECT_THAT(found.out, HasSubstr("first.xlsx links to 1 other book"));
  const TemporaryFile alone("alone.xlsx",
                            LinkedBooks::first_book()
                                .links("xl/externalLinks/externalLink1.xml",
                                       {{"rId1", "externalLinkPath", "gone.xlsx", true}})
                                .bytes());
  EXPECT_THAT(run_qto({"links", alone.path()}).out,
              HasSubstr("gone.xlsx\n    not opened: not found"));
  EXPECT_THAT(run_qto({"tree", alone.path(), "A1", "--open", "always"}).out,
              HasSubstr("gone.xlsx: not found"));
  EXPECT_THAT(run_qto({"links", books.first.path(), "--json"}).out, HasSubstr("\"Exists\": true"));
}

TEST(Interrupt, ends_a_drill_with_what_was_found) {
  const LinkedBooks books;
  const Outcome outcome =
      interrupt_qto({"tree", books.first.path(), "A1", "--open", "ask"}, "Open it?");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("Sheet1!A1"));
  EXPECT_THAT(outcome.err, HasSubstr("interrupted"));
}

}  // namespace
}  // namespace qto::test
