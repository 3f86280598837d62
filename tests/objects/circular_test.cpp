#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

std::string circle_on(const Ref<host::Worksheet>& sheet) {
  const auto range = sheet->CircularReference();
  return range ? range->Address(false, false) : "";
}

TEST(CircularReference, ThroughRangesNamesAndSheets) {
  struct Case {
    const char* a1;
    const char* b1;
    const char* other_a1;
    const char* expected;
  };
  const Case cases[] = {
      {"1", "=A1", "", ""},
      {"=A1", "", "", "A1"},
      {"=B1+1", "=A1+1", "", "A1"},
      {"=SUM(A2:C3)", "=SUM(A:A)", "", ""},
      {"=SUM(A1:C3)", "", "", "A1"},
      {"=Total", "1", "", "A1"},
      {"=Other!A1", "", "=Sheet1!A1", "A1"},
      {"=Other!A1", "=A1", "5", ""},
      {"=ROWS(A1:A9)", "", "", ""},
  };
  for (const Case& c : cases) {
    const Desk desk;
    const auto other = desk.book->AddWorksheet("Other");
    desk.book->AddName("Total", "=SUM(Sheet1!$A$1:$B$1)");
    desk.put("A1", c.a1);
    desk.put("B1", c.b1);
    other->Range("A1")->put_Formula(c.other_a1);
    EXPECT_EQ(circle_on(desk.sheet), c.expected) << c.a1 << ' ' << c.b1 << ' ' << c.other_a1;
  }
}

TEST(CircularReference, IsFoundAgainAfterEdits) {
  const Desk desk;
  desk.put("A1", "=B1");
  EXPECT_EQ(circle_on(desk.sheet), "");
  desk.put("B1", "=A1");
  EXPECT_EQ(circle_on(desk.sheet), "A1");
  desk.put("A1", "1");
  EXPECT_EQ(circle_on(desk.sheet), "");
}

}  // namespace
}  // namespace qto::embedded
