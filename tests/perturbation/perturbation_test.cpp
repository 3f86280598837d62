#include "tests/conformance/perturbation/perturbation.hpp"

#include <gmock/gmock.h>

#include "tests/support/text_book.hpp"

namespace qto::embedded::conformance {
namespace {

using test::Books;

/// All but the targets of INDIRECT.
PerturbationPlan blind_for_indirect() {
  PerturbationPlan plan;
  auto options = make_ref<DrillOptions>();
  options->put_ParseIndirect(qtoDrillIndirectApparent);
  plan.options[0] = plan.options[1] = options;
  return plan;
}

TEST(Perturbation, ACellThatFeedsAValueAndIsNotFollowedIsNamed) {
  Books books("A1=5; B1=C7; C6=1; C7=3; C8=2; D1==INDIRECT(B1)+A1; D2==A1");
  const PerturbationResult result = perturb(books.opened.front(), blind_for_indirect());
  EXPECT_EQ(result.checked, 2);
  ASSERT_EQ(result.misses[0], 1);
  const Miss& miss = result.shown.front();
  EXPECT_EQ(miss.cell, "Sheet1!D1");
  EXPECT_EQ(miss.culprit, "Sheet1!C7");
  EXPECT_EQ(miss.culprit_before, "3");
  EXPECT_EQ(miss.followed, "Sheet1!A1 Sheet1!B1");
}

TEST(Perturbation, EveryCulpritIsNamed) {
  Books books("B1=C1:C3; C2=3; D1==SUM(INDIRECT(B1))");
  const PerturbationResult result = perturb(books.opened.front(), blind_for_indirect());
  std::vector<std::string> culprits;
  for (const Miss& miss : result.shown) culprits.push_back(miss.culprit);
  EXPECT_THAT(culprits, testing::UnorderedElementsAre("Sheet1!C1", "Sheet1!C2", "Sheet1!C3"));
}

TEST(Perturbation, NothingIsMissedWhereADrillFollowsAll) {
  Books books(
      "A1=1; A2=2; A3=3; B1=x; B2=y; B3=z; C1=2; name Rate=Sheet1!$A$1; D1==VLOOKUP(C1,A1:B3,2,0); "
      "D2==IF(A1>0,Rate,B2)&SUMIF(A1:A3,\">1\"); D3==SUM(OFFSET(A1,1,0,C1)); "
      "D4==MATCH(C1,A1:A3,0)");
  const PerturbationResult result = perturb(books.opened.front(), {});
  EXPECT_EQ(result.checked, 4);
  EXPECT_EQ(result.intelligent, 4);
  EXPECT_EQ(result.misses[0] + result.misses[1], 0);
}

TEST(Perturbation, WhatNoChangeReachesIsCountedByFunction) {
  Books books("A1=1; B1=2; C1=3; D1==IF(A1>0,B1,C1)");
  PerturbationResult result = perturb(books.opened.front(), {});
  EXPECT_EQ(result.reach[0]["IF"].precedents, 3);
  EXPECT_EQ(result.reach[0]["IF"].unreachable, 1);
  EXPECT_EQ(result.reach[1]["IF"].precedents, 2);
  EXPECT_EQ(result.reach[1]["IF"].unreachable, 0);
}

TEST(Perturbation, TheBookIsAfterwardsAsItWas) {
  Books books("A1=5; B2=text; C3=TRUE; D4==A1*2; E5==NA()");
  const auto sheet = books.opened.front()->Worksheets(1);
  const auto used = sheet->UsedRange();
  const Variant before = used->value();
  perturb(books.opened.front(), {});
  EXPECT_EQ(sheet->UsedRange()->block(), used->block());
  EXPECT_EQ(sheet->UsedRange()->value(), before);
}

TEST(Perturbation, FormulasThatDrawNumbersAreLeftOut) {
  Books books("A1==RAND(); A2==NOW(); name Dice=RANDBETWEEN(1,6); A3==Dice");
  const PerturbationResult result = perturb(books.opened.front(), {});
  EXPECT_EQ(result.chance, 2);
  EXPECT_EQ(result.checked, 1);
}

}  // namespace
}  // namespace qto::embedded::conformance
