#include "tests/functions/formula_table.hpp"

namespace qto::embedded {
namespace {

TEST(Coupons, FollowTheLastDayOfMonths) {
  expect_results(
      "", {{"=TEXT(COUPPCD(DATE(2024,3,15),DATE(2025,8,31),2),\"yyyy-mm-dd\")", "2024-02-29"},
           {"=TEXT(COUPNCD(DATE(2024,2,29),DATE(2025,8,31),2),\"yyyy-mm-dd\")", "2024-08-31"},
           {"=COUPNUM(DATE(2024,2,29),DATE(2025,8,31),2)", "3"},
           {"=COUPDAYBS(DATE(2024,3,30),DATE(2025,8,31),2,1)", "30"},
           {"=COUPNUM(DATE(2025,8,31),DATE(2025,8,31),2)", "#NUM!"},
           {"=COUPNUM(1,100,3)", "#NUM!"},
           {"=COUPNUM(1,100,2,5)", "#NUM!"}});
}

TEST(OddPeriods, AreMeasuredInCouponPeriods) {
  SmallBook book;
  const auto expect = [&](const char* formula, double value) {
    EXPECT_NEAR(book.number(formula), value, 1e-9) << formula;
  };
  expect("=ODDFPRICE(39763,44256,39736,39873,0.0785,0.0625,100,2,1)", 113.59771747407883);
  expect("=ODDFPRICE(43891,47543,43845,44256,0.075,0.05,120,1,1)", 131.5377155865953);
  expect("=ODDFPRICE(43891,47543,43845,44256,0.075,0.067,120,1,2)", 115.98854775223758);
  expect("=ODDFYIELD(43891,47543,43845,44256,0.075,131.5377155865953,120,1,1)", 0.05);
  expect("=ODDLPRICE(43891,47543,43845,0.075,0.06,120,2,1)", 121.51937811334447);
  expect("=ODDLYIELD(43891,47543,43845,0.075,121.51937811334447,120,2,1)", 0.06);
  expect("=ACCRINT(DATE(2020,1,1),DATE(2020,7,1),DATE(2020,3,1),0.1,1000,2,1)", 3000.0 / 182);
  // Maturity has to lie on a coupon day counted from the first.
  EXPECT_EQ(book.run("=ODDFPRICE(39763,44257,39736,39873,0.0785,0.0625,100,2,1)"), "#NUM!");
}

TEST(Yields, TurnPricesBack) {
  SmallBook book;
  for (const int basis : {0, 1, 2, 3, 4})
    for (const int frequency : {1, 2, 4}) {
      const std::string rest =
          ",100," + std::to_string(frequency) + "," + std::to_string(basis) + ")";
      const std::string price = "PRICE(39493,43054,0.0575,0.065" + rest;
      EXPECT_NEAR(book.number("=YIELD(39493,43054,0.0575," + price + rest), 0.065, 1e-12) << price;
    }
}

TEST(Depreciation, StepsFromTheFractionOfItsStart) {
  SmallBook book;
  EXPECT_NEAR(book.number("=VDB(1,0,14,11.5,12.5,1.25)"), 0.06872629045468406, 1e-15);
  EXPECT_NEAR(book.number("=VDB(1,0,14,11,12,1.25)"), 0.06866789938377948, 1e-15);
  EXPECT_NEAR(book.number("=VDB(2400,300,10,0,0.875,1.5)"), 315, 1e-9);
  EXPECT_NEAR(book.number("=VDB(2400,300,10,0,10)"), 2100, 1e-9);
  EXPECT_NEAR(book.number("=VDB(2400,300,10,6,10,2,TRUE)"), 2400 * 0.262144 - 300, 1e-9);
}

TEST(Rates, RefuseWhatHasNone) {
  expect_results("", {{"=IRR({1,2,3})", "#NUM!"},
                      {"=IRR({-1,#DIV/0!})", "#VALUE!"},
                      {"=XIRR({-10,1},{3,#REF!})", "#REF!"},
                      {"=XIRR({-10,#N/A},{3,#REF!})", "#REF!"},
                      {"=RATE(0,1,1)", "#NUM!"}});
}

}  // namespace
}  // namespace qto::embedded
