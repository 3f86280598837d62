#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

TEST(Names, OfBookAndSheet) {
  Desk desk;
  const auto second = desk.book->AddWorksheet("My sheet");
  const auto rate = desk.book->AddName("Rate", "=Sheet1!$B$2");
  const auto local = second->AddName("Rate", "='My sheet'!$C$3");

  EXPECT_EQ(rate->Name(), "Rate");
  EXPECT_EQ(rate->RefersTo(), "=Sheet1!$B$2");
  EXPECT_EQ(rate->RefersToR1C1Local(), "=Sheet1!R2C2");
  EXPECT_EQ(rate->Parent()->TypeName(), "Workbook");
  EXPECT_EQ(rate->Index(), 1);
  EXPECT_EQ(local->Name(), "'My sheet'!Rate");
  EXPECT_EQ(local->Parent()->TypeName(), "Worksheet");
  EXPECT_EQ(local->Index(), 2);

  EXPECT_EQ(desk.book->Names("rATE")->RefersTo(), "=Sheet1!$B$2");
  EXPECT_EQ(second->Names("rate")->RefersTo(), "='My sheet'!$C$3");
  EXPECT_EQ(desk.book->Names("'my sheet'!Rate")->RefersTo(), "='My sheet'!$C$3");
  EXPECT_FALSE(desk.sheet->find_name("Rate"));
  EXPECT_FALSE(desk.book->find_name("Rates"));
  EXPECT_FALSE(desk.book->find_name("Nowhere!Rate"));
  EXPECT_FALSE(desk.book->find_name(""));
  EXPECT_FAILS(desk.book->Names("Rates"));
  EXPECT_FAILS(desk.sheet->Names("Rate"));
  EXPECT_EQ(desk.book->AllNames().size(), 2u);

  // The application sees names as a formula on the active sheet does.
  EXPECT_EQ(desk.app->Names("Rate")->RefersTo(), "=Sheet1!$B$2");
  second->Activate();
  EXPECT_EQ(desk.app->Names("Rate")->RefersTo(), "='My sheet'!$C$3");
  EXPECT_EQ(desk.app->find_name("Book1!Rate")->RefersTo(), "=Sheet1!$B$2");
  EXPECT_FALSE(desk.app->find_name("None"));
}

TEST(Names, AreRedefinedInPlace) {
  const Desk desk;
  const auto rate = desk.book->AddName("Rate", "=1");
  desk.book->AddName("RATE", "=2");
  EXPECT_TRUE(rate->exists());
  EXPECT_EQ(rate->RefersTo(), "=2");
  EXPECT_EQ(desk.book->AllNames().size(), 1u);
}

TEST(Names, ReferencesWithoutSheetMeanTheActiveSheet) {
  const Desk desk;
  EXPECT_EQ(desk.book->AddName("Total", "=SUM($A$1:$A$3)*2")->RefersTo(),
            "=SUM(Sheet1!$A$1:$A$3)*2");
}

TEST(Names, RelativeOnesAreSeenFromTheActiveCell) {
  const Desk desk;
  desk.at("B2")->Select();
  const auto above = desk.book->AddName("Above", "=Sheet1!B1");
  EXPECT_EQ(above->RefersTo(), "=Sheet1!B1");
  desk.at("D7")->Select();
  EXPECT_EQ(above->RefersTo(), "=Sheet1!D6");
  EXPECT_EQ(above->RefersToR1C1Local(), "=Sheet1!R[-1]C");
  desk.put("D6", "42");
  desk.put("D7", "=Above");
  EXPECT_EQ(desk.value("D7"), "42");
  EXPECT_EQ(desk.at("D6")->find_name()->Name(), "Above");
  EXPECT_FALSE(desk.at("B1")->find_name());
}

TEST(Names, OfExactlyARange) {
  const Desk desk;
  desk.book->AddName("Formula", "=Sheet1!$A$1+1");
  desk.book->AddName("First", "=Sheet1!$A$1:$B$2");
  desk.book->AddName("Second", "=Sheet1!$A$1:$B$2");
  EXPECT_EQ(desk.at("A1:B2")->find_name()->Name(), "First");
  EXPECT_FALSE(desk.at("A1")->find_name());
  EXPECT_FALSE(desk.book->AddWorksheet()->Range("A1:B2")->find_name());
  desk.book->AddName("Cell", "=Sheet1!$A$1");
  EXPECT_EQ(desk.at("A1")->find_name()->Name(), "Cell");
}

TEST(Names, ImpossibleOnesAreRefused) {
  const Desk desk;
  for (const char* name : {"", "1st", "A1", "XFD9", "R1C1", "R", "c", "a b", "a-b", "Sheet1!x"})
    EXPECT_FAILS(desk.book->AddName(name, "=1")) << name;
  EXPECT_FAILS(desk.book->AddName("Fine", "=1+"));
  for (const char* name : {"_x", "Größe", "Rate.2", "XFE1", "RC_total"})
    EXPECT_EQ(desk.book->AddName(name, "=1")->Name(), name);
}

}  // namespace
}  // namespace qto::embedded
